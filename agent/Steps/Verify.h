#pragma once

#include <string>
#include <vector>

#include <Steps/Step.h>

namespace Steps {

// Audits the rules, runs the plug-in's own pass, or both.
class Verify final : public Step {
 public:
   enum class How { audit, plugIn, both };

   Verify() = default;
   explicit Verify( How verification ) : how( verification ) {}

   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   How how = How::both;
};

// Queues an audit, and the plug-in's own pass after it, since nothing can be audited after the pass
// has stopped the process.
void queueVerification( Context const & context, Verify::How how, int line = 0 );

}  // namespace Steps
