#include <CommandLine/LiveNames.h>

#include <algorithm>
#include <set>

#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>

namespace CommandLine {

namespace {

// Ends a run that goes on for too long.
class Deadline final : public Story::Observer {
 public:
   void onEvent( Story::Event const & ) override {
      if ( std::chrono::steady_clock::now() > end_ ) {
         throw std::runtime_error( "the names take too long" );
      }
   }

 private:
   std::chrono::steady_clock::time_point end_ =
      std::chrono::steady_clock::now() + LiveNames::kPatience;
};

template< typename Event > class Kept final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const one = std::get_if< Event >( &event ) ) {
         all.push_back( *one );
      }
   }

   std::vector< Event > all;
};

template< typename T > bool isText( std::string const & text ) {
   try {
      return Quelm::textOf( Quelm::fromText< T >( text ) ) == text;
   } catch ( Quelm::TextError const & ) {
      return false;
   }
}

// "/evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]" has two.
void addKeys( std::string const & path, std::set< std::string > & keys ) {
   std::size_t open = path.find( '[' );
   while ( open != std::string::npos ) {
      std::size_t const close = std::min( path.find( ']', open ), path.size() );
      keys.insert( path.substr( open + 1, close - open - 1 ) );
      open = path.find( '[', close );
   }
}

}  // namespace

template< typename Event, typename Show >
std::vector< Event > LiveNames::asked( Show const & show ) const {
   auto const & source = conversation_.source();
   Scenario::Model const scenario = source.read( {} );
   ScenarioRun what{ scenario, source.config, {}, kPatience };
   what.config.show = show;
   Deadline deadline;
   Kept< Event > kept;
   Story::Observers all( { &deadline, &kept } );
   try {
      runScenario( what, all );
   } catch ( std::runtime_error const & ) {  // the deadline
      return {};
   }
   return std::move( kept.all );
}

void LiveNames::refresh() {
   if ( changes_ != conversation_.session().changes() ) {
      changes_ = conversation_.session().changes();
      keys_.reset();
      roots_.reset();
      entities_.clear();
   }
}

std::vector< std::string > const & LiveNames::keys() {
   refresh();
   if ( !keys_ ) {
      std::set< std::string > found;
      for ( auto const & shown : asked< Story::TableShown >( Questions::find( "state" ) ) ) {
         for ( auto const & row : shown.table.rows ) {
            if ( row[ 0 ].words() != "rule" ) {
               addKeys( row[ 1 ].words(), found );
               found.insert( row[ 2 ].words() );
            }
         }
      }
      keys_.emplace( found.begin(), found.end() );
   }
   return *keys_;
}

std::vector< std::string > const & LiveNames::roots() {
   refresh();
   if ( !roots_ ) {
      roots_.emplace();
      for ( auto const & shown : asked< Story::EntityShown >( Host::AgentConfig::Paths{} ) ) {
         roots_->push_back( shown.path );
      }
   }
   return *roots_;
}

Story::EntityTree const & LiveNames::entityAt( std::string const & path ) {
   refresh();
   auto const [ place, isNew ] = entities_.try_emplace( path );
   if ( isNew ) {
      try {
         auto const shown =
            asked< Story::EntityShown >( StateDatabase::EntityPath::fromString( path ) );
         place->second = shown.empty() ? Story::EntityTree() : shown.front().tree;
      } catch ( Quelm::TextError const & ) {  // no path; it stays without attributes
         place->second = {};
      }
   }
   return place->second;
}

std::vector< std::string > LiveNames::interfaces( std::string_view kind ) {
   std::vector< std::string > all;
   for ( std::string const & key : keys() ) {
      if ( key.starts_with( kind ) && isText< Pelk::IntfId >( key ) ) {
         all.push_back( key );
      }
   }
   return all;
}

std::vector< std::string > LiveNames::vteps() {
   std::vector< std::string > all;
   for ( std::string const & key : keys() ) {
      if ( isText< Pelk::IpGenAddr >( key ) ) {
         all.push_back( key );
      }
   }
   return all;
}

std::vector< std::string > LiveNames::paths( std::string const & begun ) {
   std::vector< std::string > all;
   bool isBelowARoot = false;
   for ( std::string const & root : roots() ) {
      isBelowARoot = isBelowARoot || begun.starts_with( root + '/' );
      if ( root.starts_with( begun ) ) {
         all.push_back( root );
      }
   }
   if ( !isBelowARoot ) {
      return all;
   }
   std::string const parent = begun.substr( 0, begun.rfind( '/' ) );
   for ( Story::EntityAttribute const & attribute : entityAt( parent ).attributes ) {
      for ( Story::EntityItem const & item : attribute.items ) {
         if ( !item.entity.empty() ) {
            std::string const key = attribute.isKeyed() ? '[' + item.key + ']' : "";
            all.push_back( parent + '/' + attribute.name + key );
         }
      }
   }
   return all;
}

std::vector< std::string > LiveNames::attributes( std::string const & path ) {
   std::vector< std::string > all;
   for ( Story::EntityAttribute const & attribute : entityAt( path ).attributes ) {
      all.push_back( attribute.name );
   }
   return all;
}

}  // namespace CommandLine
