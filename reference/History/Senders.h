// The rules that keep the frames of remote VTEPs back, and what lasts of the events that made them.
//
// By the state alone it would be simple: wherever the switch has a VTEP that shares a segment and
// has a virtual port, each unit has a rule that recognises its frames, and covers the unit's ports
// of the shared segments. Facts::sharedPorts() is that. But rules are made once and then followed
// up event by event, so they depend on the way:
//
// - A VTEP that found no room when it began to share is not tried again.
// - A port joins or leaves the rules as an interface: on every unit, whatever its own unit.
// - The port that leaves is the last one that the interface had, whoever has it now.
// - A rule keeps the class id that it was made with.
//
// Each of these stands here as it happens.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <Facts/Facts.h>
#include <History/Stop.h>
#include <Rules/Groups.h>

namespace Reference {

class Senders {
 public:
   Senders( Device const & device, Facts const & facts, Groups & groups )
         : device_( device ), facts_( facts ), groups_( groups ) {}

   // The VTEP begins to share a segment; or it shares its last one no more.
   void sharingChanges( Vtep const & vtep );
   // An interface is shared with the VTEP now, or not any more; other interfaces are, before and
   // after. The last one that goes is told here before the end of sharing.
   void sharedInterfaceChanges( Vtep const & vtep, Interface const & intf, bool isShared );
   // A virtual port comes or changes; or it goes. A VTEP under several keys has several.
   void virtualPortIs( Vtep const & vtep );
   void virtualPortGoes( Vtep const & vtep );
   // An Ethernet interface gets, changes or loses its port. Its last port is still the old one.
   void portChanges( Interface const & intf );
   // The member joins the port channel, or leaves it.
   void memberChanges( Interface const & portChannel, Interface const & member, bool isMember );
   void grantComes( Vtep const & vtep );
   // The verification pass: every rule is read back, and held against what is on record here and
   // against the state. It changes nothing, and stops at the first difference.
   void verify();
   // A shortage was logged, and its end was not. A pass is skipped.
   bool isShort() const { return isShort_; }

   // The VTEPs for which a class id is asked.
   std::set< Vtep > const & requests() const { return requests_; }
   std::vector< std::string > takeLog() { return std::exchange( log_, {} ); }

 private:
   // The rules of one VTEP on one unit.
   struct Sender {
      RuleId rule;  // recognises its frames
      std::optional< std::set< unsigned > > mask;
      bool hasDrops = false;           // a list of them, which can be empty
      std::map< Port, RuleId > drops;  // one for each port
      bool wasTried = false;           // with the present virtual port
   };
   // A unit with rules for VTEPs, or with VTEPs that wait for their class id.
   using Record = std::map< Vtep, Sender >;
   using Ports = std::set< Port >;

   static constexpr unsigned kNewClass = 1;  // that an egress rule looks at
   static constexpr unsigned kAnyIpType = 0;

   bool usesClassIds() const { return device_.variant == Variant::classId; }
   bool isShared( Vtep const & vtep ) const { return !facts_.sharedWith( vtep ).empty(); }

   // --- One VTEP on one unit
   void recordIs( unsigned unit );
   void recordGoesIfUnused( unsigned unit );
   Sender & senderOn( unsigned unit, Vtep const & vtep );
   bool hasRule( unsigned unit, Vtep const & vtep ) const;
   void make( unsigned unit, Vtep const & vtep );
   void makeAnew( unsigned unit, Vtep const & vtep );
   void unmake( unsigned unit, Vtep const & vtep );
   void requireNothingMade( Sender const & sender, char const * function ) const;
   bool recognise( unsigned unit, Vtep const & vtep );
   Ports portsToCover( unsigned unit, Vtep const & vtep ) const;
   void fullIs();

   // --- Exemptions of unicast
   static constexpr unsigned kL2Unicast = 4;
   static constexpr unsigned kL3Unicast = 10;
   RuleId exempt( unsigned unit, char const * name, unsigned resolution );
   void exemptUnicast( unsigned unit );
   void exemptNoMore( unsigned unit );

   // --- Verification
   void verify( unsigned unit, Vtep const & vtep );
   void verifyRecord( unsigned unit, Vtep const & vtep ) const;
   void verifyExemption( unsigned unit, RuleId rule, unsigned resolution, char const * expression );
   void verifySender( unsigned unit, Vtep const & vtep );
   void verifyMask( unsigned unit, Vtep const & vtep );
   void verifyMark( unsigned unit, Vtep const & vtep );
   void verifyDrops( unsigned unit, Vtep const & vtep );
   ClassId classIdOf( Vtep const & vtep ) const;
   std::size_t portsExpected( unsigned unit, Vtep const & vtep ) const;
   // Without a record, as without rules.
   Sender const & recordedOn( unsigned unit, Vtep const & vtep ) const;

   // --- Follow-up
   void followUp( unsigned unit, Vtep const & vtep, Interface const & intf, bool isAdded );
   void followUpMask( Sender & sender, Ports const & before, Ports const & now, bool isAdded );

   // --- Variants
   void mark( Sender & sender, Vtep const & vtep );
   void mask( Sender & sender, Ports const & ports );
   void makeWithClassId( unsigned unit, Vtep const & vtep );
   void unmakeMasked( unsigned unit, Vtep const & vtep );
   void unmakeMarked( unsigned unit, Vtep const & vtep );
   void giveClassIdBack( Vtep const & vtep );
   bool drop( unsigned unit, Vtep const & vtep, Ports const & ports );
   RuleId dropAt( unsigned unit, Vtep const & vtep, Port const & port );
   void dropNoMore( unsigned unit, Vtep const & vtep, Ports const & ports );

   Device const & device_;
   Facts const & facts_;
   Groups & groups_;
   std::map< unsigned, Record > records_;
   std::map< unsigned, RuleId > exemptL2_;
   std::map< unsigned, RuleId > exemptL3_;
   std::set< Vtep > requests_;
   std::map< Vtep, ClassId > classId_;  // in use; a grant that goes leaves it
   std::map< Vtep, unsigned > marks_;   // rules that carry it
   bool isShort_ = false;               // a shortage was logged, and its end was not
   std::vector< std::string > log_;
};

}  // namespace Reference
