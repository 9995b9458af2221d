#include <Shrinking/Shrinker.h>

#include <array>

#include <Story/Wording.h>

namespace Shrinking {

using Scenario::Yaml;

namespace {

class Shrinker {
 public:
   Shrinker( Yaml document, FirstThatHolds const & firstThatHolds )
         : document_( std::move( document ) ), firstThatHolds_( firstThatHolds ) {}

   Yaml const & document() const { return document_; }

   // Whether anything could be left out.
   bool pass() {
      Yaml const before = document_;
      if ( auto const steps = placeOfSteps() ) {
         shrink( *steps, minimised );
         if ( at( document_, *steps ).parts.size() <= kMostForPairs ) {
            shrink( *steps, withoutPairs );
         }
      }
      // Leaving parts out at one depth moves no other place of that depth.
      for ( std::size_t depth = 0;; ++depth ) {
         auto const places = rowsAt( document_, depth );
         if ( places.empty() ) {
            return document_ != before;
         }
         for ( Place const & place : places ) {
            shrink( place, minimised );
         }
      }
   }

 private:
   std::optional< Place > placeOfSteps() const {
      for ( std::size_t n = 0; n < document_.parts.size(); ++n ) {
         if ( document_.parts[ n ].key == "steps" ) {
            return Place{ n };
         }
      }
      return std::nullopt;
   }

   template< typename Way > void shrink( Place const & place, Way const & way ) {
      auto const firstThatDoes = [ & ]( std::vector< Kept > const & candidates ) {
         return firstThatHolds_( { candidates.size(), [ & ]( std::size_t number ) {
                                     return withParts( document_, place, candidates[ number ] );
                                  } } );
      };
      Kept const kept = way( at( document_, place ).parts.size(), firstThatDoes );
      document_ = withParts( std::move( document_ ), place, kept );
   }

   Yaml document_;
   FirstThatHolds const & firstThatHolds_;
};

void addRows( Yaml const & value, std::size_t depth, Place const & place,
              std::vector< Place > & places ) {
   if ( depth == 0 ) {
      if ( !value.parts.empty() ) {
         places.push_back( place );
      }
      return;
   }
   for ( std::size_t n = 0; n < value.parts.size(); ++n ) {
      Place below = place;
      below.push_back( n );
      addRows( value.parts[ n ], depth - 1, below, places );
   }
}

}  // namespace

Yaml shrunk( Yaml const & document, FirstThatHolds const & firstThatHolds ) {
   Shrinker shrinker( document, firstThatHolds );
   while ( shrinker.pass() ) {
   }
   return shrinker.document();
}

std::string sizeOf( Yaml const & document ) {
   struct Subject {
      std::string_view part;
      std::string_view row;
      std::string_view name;  // of one
   };
   static constexpr std::array< Subject, 6 > subjects{
      Subject{ "evpn", "vteps", "VTEP" },
      { "evpn", "segments", "segment" },
      { "evpn", "tunnel-interfaces", "tunnel interface" },
      { "switch", "interfaces", "interface" },
      { "switch", "port-channels", "port channel" },
      { "switch", "units", "unit" }
   };
   Yaml const * const steps = document.find( "steps" );
   std::string text = Story::counted( steps ? steps->parts.size() : 0, "step" );
   for ( Subject const & subject : subjects ) {
      Yaml const * const part = document.find( subject.part );
      Yaml const * const row = part ? part->find( subject.row ) : nullptr;
      if ( row && !row->parts.empty() ) {
         text += ", " + Story::counted( row->parts.size(), std::string( subject.name ) );
      }
   }
   return text;
}

Yaml const & at( Yaml const & document, Place const & place ) {
   Yaml const * value = &document;
   for ( std::size_t const number : place ) {
      value = &value->parts.at( number );
   }
   return *value;
}

std::vector< Place > rowsAt( Yaml const & document, std::size_t depth ) {
   std::vector< Place > places;
   addRows( document, depth, {}, places );
   return places;
}

Yaml withParts( Yaml document, Place const & place, Kept const & kept ) {
   Yaml * value = &document;
   for ( std::size_t const number : place ) {
      value = &value->parts.at( number );
   }
   std::vector< Yaml > parts;
   for ( std::size_t const number : kept ) {
      parts.push_back( std::move( value->parts[ number ] ) );
   }
   value->parts = std::move( parts );
   return document;
}

}  // namespace Shrinking
