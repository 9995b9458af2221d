#include <Exploring/Share.h>

namespace Exploring {

Share::Share( Exploration const & exploration, std::size_t length, Shard shard,
              std::filesystem::path const & results ) {
   std::map< Sequence, Findings > done;
   if ( !results.empty() ) {
      done = file_.emplace( results, exploration, length ).done();
   }
   std::vector< Branch > const branches = branchesOf( exploration, length );
   for ( std::size_t n = shard.number - 1; n < branches.size(); n += shard.of ) {
      auto const found = done.find( branches[ n ].begin );
      if ( found == done.end() ) {
         open_.push_back( branches[ n ] );
      } else {
         findings_.add( found->second );
      }
   }
}

void Share::add( Branch const & branch, Findings const & findings ) {
   findings_.add( findings );
   if ( file_ ) {
      file_->add( branch, findings );
   }
}

}  // namespace Exploring
