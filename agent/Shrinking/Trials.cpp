#include <Shrinking/Trials.h>

#include <algorithm>

#include <Steps/Reader.h>
#include <Testing/Workers.h>

namespace Shrinking {

namespace {

// An ending as a worker's result, and back.
Testing::Result resultOf( Ending const & ending ) {
   Testing::Result result;
   result.isOver = true;
   result.title = ending.badInput;
   result.expectations = ending.stop ? 1 : 0;
   if ( ending.stop ) {
      result.failures.push_back( { "", *ending.stop, {} } );
   }
   for ( std::string const & failed : ending.failed ) {
      result.failures.push_back( { "", failed, {} } );
   }
   return result;
}

Ending endingOf( Testing::Result const & result ) {
   Ending ending;
   ending.badInput = result.isOver ? result.title : "it was interrupted";
   for ( Testing::Failure const & failure : result.failures ) {
      if ( result.expectations != 0 && !ending.stop ) {
         ending.stop = failure.what;
      } else {
         ending.failed.push_back( failure.what );
      }
   }
   return ending;
}

}  // namespace

std::vector< Ending > Trials::endingsOf( std::vector< std::string > const & texts ) {
   // The workers take files; here a file is the number of a text.
   std::vector< std::filesystem::path > numbers;
   for ( std::size_t n = 0; n < texts.size(); ++n ) {
      numbers.emplace_back( std::to_string( n ) );
   }
   auto const work = [ & ]( std::filesystem::path const & number ) {
      try {
         std::string const & text = texts.at( std::stoul( number.string() ) );
         return resultOf(
            config_.run( Steps::readScenarioText( text, config_.file, {}, {}, config_.root ) ) );
      } catch ( std::exception const & error ) {
         return resultOf( { {}, {}, error.what() } );
      }
   };
   auto const tested = Testing::testAll( numbers, config_.jobs, work,
                                         [ & ]( auto const & ) { config_.progress(); } );
   runs_ += texts.size();
   signal_ = tested.signal;
   std::vector< Ending > endings;
   for ( Testing::Result const & result : tested.results ) {
      endings.push_back( Shrinking::endingOf( result ) );
   }
   return endings;
}

Ending Trials::endingOf( Scenario::Yaml const & document ) {
   return endingsOf( { textOf( document ) } ).front();
}

// The next candidates that were not tried before, as many as run at a time.
Trials::Batch Trials::batchFrom( std::size_t & next, Candidates const & candidates ) const {
   Batch batch;
   for ( ; next < candidates.count && batch.texts.size() < config_.jobs; ++next ) {
      std::string text = textOf( candidates.document( next ) );
      if ( !failed_.contains( text ) ) {
         batch.numbers.push_back( next );
         batch.texts.push_back( std::move( text ) );
      }
   }
   return batch;
}

std::optional< std::size_t > Trials::firstThatHolds( Candidates const & candidates ) {
   for ( std::size_t next = 0; next < candidates.count && signal_ == 0; ) {
      Batch const batch = batchFrom( next, candidates );
      signal_ = request_.signal();
      if ( signal_ != 0 || batch.texts.empty() ) {
         continue;
      }
      auto const endings = endingsOf( batch.texts );
      for ( std::size_t n = 0; n < endings.size() && signal_ == 0; ++n ) {
         if ( endings[ n ].isLike( wanted_ ) ) {
            return batch.numbers[ n ];
         }
         failed_.insert( batch.texts[ n ] );
      }
   }
   return std::nullopt;
}

}  // namespace Shrinking
