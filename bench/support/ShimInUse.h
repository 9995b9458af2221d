// The shim of a board, in use while this object lives.
#pragma once

#include <memory>

#include <Board/Board.h>
#include <Decorators/RecordingSdk.h>

namespace Bench {

class ShimInUse {
 public:
   // With an observer, a shim that tells it of each call.
   explicit ShimInUse( Chip::Board & board, Chip::CallObserver * observer = nullptr ) {
      if ( observer ) {
         recorder_ = std::make_unique< Chip::RecordingSdk >( board.sdk(), *observer );
         Shim::sdk_ = recorder_.get();
      } else {
         Shim::sdk_ = &board.sdk();
      }
   }
   ShimInUse( ShimInUse const & ) = delete;
   ShimInUse & operator=( ShimInUse const & ) = delete;
   ~ShimInUse() { Shim::sdk_ = nullptr; }

 private:
   std::unique_ptr< Chip::RecordingSdk > recorder_;
};

}  // namespace Bench
