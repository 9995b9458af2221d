#include <Exploring/Branches.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <Process/BoundedFile.h>
#include <Process/SharedFolder.h>
#include <Process/WholeFile.h>
#include <Story/InputError.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string headerOf( Exploration const & exploration, std::size_t length ) {
   return Json{
      { "explored", exploration.name() },
      { "formatVersion", "1.2" },
      { "fingerprint", fmt::format( "{:016x}", exploration.fingerprint() ) },
      { "length", length }
   }.dump();
}

Kind kindNamed( std::string const & name ) {
   for ( Kind const kind : kKinds ) {
      if ( name == nameOf( kind ) ) {
         return kind;
      }
   }
   throw std::runtime_error( "no way to end is named '" + name + "'" );
}

void checkEvents( Sequence const & sequence, Exploration const & exploration ) {
   for ( U16 const event : sequence ) {
      if ( event >= exploration.events() ) {
         throw std::runtime_error( fmt::format( "the exploration has no event {}", event ) );
      }
   }
}

std::map< Sequence, Findings > resultsBehindHeader( std::istream & in,
                                                    Exploration const & exploration ) {
   std::map< Sequence, Findings > results;
   for ( std::string line; std::getline( in, line ) && !in.eof(); ) {
      auto [ branch, findings ] = decoded( line );
      checkEvents( branch.begin, exploration );
      for ( auto const & [ key, found ] : findings.all ) {
         checkEvents( found.shortest, exploration );
      }
      results.emplace( std::move( branch.begin ), std::move( findings ) );
   }
   return results;
}

[[noreturn]] void refuse( fs::path const & file, std::string const & why ) {
   throw Story::InputError( file.string() + ": " + why );
}

}  // namespace

std::vector< Branch > branchesOf( Exploration const & exploration, std::size_t length ) {
   std::vector< Branch > branches{ {} };
   U16 const events = exploration.events();
   for ( U16 first = 0; first < events; ++first ) {
      if ( !exploration.isCanonical( { first } ) ) {
         continue;
      }
      branches.push_back( { { first } } );
      for ( U16 second = 0; second < events && length > 1; ++second ) {
         if ( exploration.isCanonical( { first, second } ) ) {
            branches.push_back( { { first, second }, true } );
         }
      }
   }
   return branches;
}

std::string encoded( Branch const & branch, Findings const & findings ) {
   Json found = Json::array();
   for ( auto const & [ key, one ] : findings.all ) {
      found.push_back( { { "kind", nameOf( key.kind ) },
                         { "what", key.what },
                         { "sequences", one.sequences },
                         { "shortest", one.shortest },
                         { "calls", one.calls } } );
   }
   return Json{
      { "branch", branch.begin },
      { "isWhole", branch.isWhole },
      { "sequences", findings.counts.sequences },
      { "standFor", findings.counts.standFor },
      { "without", findings.counts.without },
      { "frames", findings.counts.frames },
      { "unnamed", findings.counts.unnamed },
      { "found", std::move( found ) }
   }.dump( -1, ' ', false, Json::error_handler_t::replace );
}

std::pair< Branch, Findings > decoded( std::string const & line ) {
   Json const json = Json::parse( line );
   Branch const branch{ json.at( "branch" ), json.at( "isWhole" ) };
   Findings findings;
   findings.counts = { json.at( "sequences" ), json.at( "standFor" ), json.at( "without" ),
                       json.at( "frames" ), json.at( "unnamed" ) };
   for ( Json const & one : json.at( "found" ) ) {
      findings.add( { kindNamed( one.at( "kind" ) ), one.at( "what" ) },
                    { one.at( "sequences" ), one.at( "shortest" ), one.at( "calls" ) } );
   }
   return { branch, findings };
}

namespace {

constexpr std::string_view kNone = "none: ";

}  // namespace

std::string resultOf( Branch const & branch, std::function< Findings() > const & find ) {
   try {
      return encoded( branch, find() );
   } catch ( std::exception const & error ) {
      return std::string( kNone ) + error.what();
   }
}

std::pair< Branch, Findings > findingsIn( Process::Worked const & worked,
                                          std::string const & subject ) {
   if ( !worked.result ) {
      throw Story::InputError( subject + ": the process that explored it ended with " + worked.end +
                               ", without a result" );
   }
   if ( worked.result->starts_with( kNone ) ) {
      std::string const why = worked.result->substr( kNone.size() );
      throw Story::InputError( why.starts_with( subject ) ? why : subject + ": " + why );
   }
   return decoded( *worked.result );
}

std::map< Sequence, Findings > resultsIn( fs::path const & file, Exploration const & exploration,
                                          std::size_t length ) {
   constexpr std::size_t kLargest = std::size_t{ 256 } << 20U;
   std::istringstream in( Process::contentOf( file, kLargest ).value_or( "" ) );
   std::string header;
   if ( !std::getline( in, header ) ) {
      refuse( file,
              "this file of results cannot be read, is empty, or is larger than 256 MiB; name "
              "another file" );
   }
   if ( header != headerOf( exploration, length ) ) {
      refuse( file, "these are no results of this exploration as it is now; name another file" );
   }
   try {
      return resultsBehindHeader( in, exploration );
   } catch ( std::exception const & error ) {
      refuse( file, std::string( "this file of results is damaged (" ) + error.what() +
                       "); name another file" );
   }
}

ResultFile::ResultFile( fs::path const & file, Exploration const & exploration, std::size_t length )
      : file_( file ) {
   Process::refuseForeign( file );
   std::error_code error;
   if ( fs::exists( file, error ) && fs::file_size( file, error ) != 0 ) {
      done_ = resultsIn( file, exploration, length );
   }
   // Anew, without a line that was cut.
   std::string text = headerOf( exploration, length ) + '\n';
   for ( auto const & [ begin, findings ] : done_ ) {
      text += encoded( { begin, begin.size() > 1 }, findings ) + '\n';
   }
   Process::writeWhole( file, text );
   out_.open( file, std::ios::app );
}

void ResultFile::add( Branch const & branch, Findings const & findings ) {
   out_ << encoded( branch, findings ) << std::endl;
   if ( !out_ ) {
      refuse( file_, "the results cannot be written; make room, and go on" );
   }
}

}  // namespace Exploring
