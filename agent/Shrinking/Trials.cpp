#include <Shrinking/Trials.h>

#include <algorithm>

#include <Process/Workers.h>
#include <Steps/Reader.h>

namespace Shrinking {

namespace {

Ending endingOf( Process::Worked const & worked ) {
   if ( worked.result ) {
      return decoded( *worked.result );
   }
   return { {},
            { "the process that ran the scenario ended with " + worked.end + ", without a result" },
            {} };
}

}  // namespace

std::vector< Ending > Trials::endingsOf( std::vector< std::string > const & texts ) {
   auto const work = [ & ]( std::size_t number ) {
      try {
         return encoded( config_.run(
            Steps::readScenarioText( texts[ number ], config_.file, {}, {}, config_.root ) ) );
      } catch ( std::exception const & error ) {
         return encoded( { {}, {}, error.what() } );
      }
   };
   std::vector< Ending > endings( texts.size(), { {}, {}, "it was interrupted" } );
   auto const take = [ & ]( std::size_t number, Process::Worked const & worked ) {
      endings[ number ] = Shrinking::endingOf( worked );
   };
   runs_ += texts.size();
   signal_ = Process::workAll( { texts.size(), config_.jobs, work, take, config_.progress } );
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
