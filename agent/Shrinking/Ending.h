// How a run has ended, in a form in which two runs can be compared.
//
// Two stops are the same when the assertion's text and its function are; without an assertion, when
// the reason and the last printed line are. Two failed expectations are the same when they are
// worded alike and have found the same. The numbers of frames and of entries do not count, since
// they change with all that goes before. Without what was found, an expectation of three rules
// where there are two would do as well with a switch that has none.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Story/Observer.h>
#include <Story/Outcome.h>

namespace Shrinking {

struct Ending {
   std::optional< std::string > stop;  // that nobody expected
   std::vector< std::string > failed;  // expectations
   std::string badInput;               // why the run came to no end

   bool isWell() const { return !stop && failed.empty() && badInput.empty(); }
   // It ends in the same stop, or without a stop and with the first failed expectation of the
   // other.
   bool isLike( Ending const & other ) const;
   // The stop, or the first failed expectation.
   std::string words() const;
};

// In one line, and back; std::runtime_error for any other text.
std::string encoded( Ending const & ending );
Ending decoded( std::string const & line );

class EndingTaken final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override;

   Ending const & ending() const { return ending_; }

 private:
   void take( Story::Stopped const & stopped );

   Ending ending_;
};

}  // namespace Shrinking
