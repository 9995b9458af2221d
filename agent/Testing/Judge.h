// Judges one run of a scenario from its events.
#pragma once

#include <Story/Observer.h>
#include <Story/Outcome.h>
#include <Testing/Result.h>

namespace Testing {

class Judge final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override;

   // After the run: the reasons why the scenario failed, in the order of the run.
   Result const & result() const { return result_; }

 private:
   void take( Story::ExpectationChecked const & expectation );
   void take( Story::Stopped const & stopped );
   void take( Story::BadInput const & input );
   void take( Story::Interrupted const & interrupted );

   Story::Outcome outcome_;
   Result result_;
};

// The failure of a scenario that cannot be read or run. Each line of `text` is a mistake.
Failure mistake( std::string const & text );

}  // namespace Testing
