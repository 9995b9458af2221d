// leaf1 that shares ports with many VTEPs, and what other agents tell it while they come, change
// and go.
//
// Its shared ports are spread over its units, and each four of them are a port channel. Each VTEP
// shares all port channels but the last one, which the unrelated VTEPs share. What happens is the
// same with and without a machine, turn by turn, so that a run without one tells what publishing
// alone costs.
#pragma once

#include <functional>

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <support/SwitchState.h>

namespace Bench {

enum class Variant { EgressMask, I2EClassId };

struct Shape {
   Variant variant;
   U32 vteps;
   U16 units;
   U32 ports;  // in all, a multiple of four
   // Further VTEPs share one further port channel with leaf1. Churn does not touch them.
   U32 unrelated = 0;
};

class SharedLeaf : public Support::SwitchState {
 public:
   explicit SharedLeaf( Shape const & shape, Chip::CallObserver * observer = nullptr );

   static Chip::BoardConfig boardOf( Shape const & shape );

   // The plug-in's machine comes, and finds no VTEP yet.
   void machineNew();

   // --- Single events
   // A VTEP shares its segments, then it has a virtual port; and loses both again.
   void vtepNew( U32 vtep );
   void vtepDel( U32 vtep );
   void virtualPortIs( U32 vtep, U32 virtualPort );
   // A member of the first port channel leaves it, and comes back.
   void memberLeaves();
   void memberReturns();
   // Another one gets another port, and its own port again.
   void portMoves();
   void portReturns();
   // On a switch with one unit.
   void vniIs( U32 vrf, U32 vni );
   void vniDel( U32 vrf );

   // --- What is measured
   // Every VTEP comes.
   void bringUp();
   // All of the following.
   void churn();
   // VTEPs, at most 64, get another virtual port.
   void virtualPortsChange();
   void memberFlaps();
   void portMovesAndReturns();
   // VNIs come, change and go.
   void vnisChange();
   // Every VTEP goes.
   void remove();

 private:
   U32 channels() const;
   void addPort( U32 number );
   void turn( std::function< void() > work );

   Shape const shape_;
   bool hasOtherPorts_ = false;  // the VTEPs whose virtual ports change
   Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm > machine_;
};

}  // namespace Bench
