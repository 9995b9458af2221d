// A shim that counts field calls, their announcements and the reports of failed ones.
#pragma once

#include <map>
#include <string_view>

#include <Decorators/SdkDecorator.h>

namespace Chip {

class CountingSdk final : public SdkDecorator {
 public:
   using SdkDecorator::SdkDecorator;

   // Field calls by operation; operations that were not called are not in it.
   std::map< std::string_view, U64 > const & callsByOperation() const { return calls_; }
   U64 calls( std::string_view operation ) const {
      auto const found = calls_.find( operation );
      return found == calls_.end() ? 0 : found->second;
   }
   U64 calls() const {
      U64 all = 0;
      for ( auto const & [ operation, count ] : calls_ ) {
         all += count;
      }
      return all;
   }
   // Announced calls, and failed calls that the guarded field call has reported. When every call is
   // a guarded one, as many have been announced as made.
   U64 announced() const { return announced_; }
   U64 failuresTold() const { return failuresTold_; }

   S32 make( Shim::Call & call ) override {
      ++calls_[ rowOf( call.operation ).name ];
      return SdkDecorator::make( call );
   }
   void beforeFieldCall() override {
      ++announced_;
      SdkDecorator::beforeFieldCall();
   }
   void fieldCallFailed() override {
      ++failuresTold_;
      SdkDecorator::fieldCallFailed();
   }

 private:
   std::map< std::string_view, U64 > calls_;
   U64 announced_ = 0;
   U64 failuresTold_ = 0;
};

}  // namespace Chip
