// A switch through its events: which rules must stand, and which calls led there.
//
//    Reference::Switch leaf( device );
//    leaf.happens( Reference::VtepJoins{ ... } );
//    leaf.turnEnds();
//    leaf.rules();      // on each unit, with their content
//    leaf.takeCalls();  // since the last time
//
// A switch that has stopped stays as it is.
#pragma once

#include <History/Event.h>
#include <History/Senders.h>
#include <History/Vnis.h>

namespace Reference {

class Switch {
 public:
   explicit Switch( Device device )
         : device_( std::move( device ) ),
           groups_( device_ ),
           senders_( device_, facts_, groups_ ),
           vnis_( device_, facts_, groups_ ) {}
   Switch( Switch const & ) = delete;
   Switch & operator=( Switch const & ) = delete;

   void happens( Event const & event );
   // The changes of an activity turn have been made.
   void turnEnds();

   Device const & device() const { return device_; }
   Facts const & facts() const { return facts_; }
   bool isReady() const { return isReady_; }
   std::map< unsigned, Rule > const & rules() const { return groups_.rules(); }
   std::set< Vtep > const & requests() const { return senders_.requests(); }
   std::vector< Call > takeCalls() { return groups_.takeCalls(); }
   std::vector< std::string > takeLog() { return senders_.takeLog(); }
   std::optional< Stop > const & stop() const { return stop_; }
   // What became of the last verification pass that did not stop: it "held"; it was "skipped" for
   // a shortage; or it was "absent", before the plug-in is ready.
   std::string const & pass() const { return pass_; }

 private:
   void take( PortIs const & event );
   void take( PortGoes const & event );
   void take( MemberJoins const & event );
   void take( MemberLeaves const & event );
   void take( SegmentIs const & event );
   void take( SegmentGoes const & event );
   void take( SegmentReplaced const & event );
   void take( VtepJoins const & event );
   void take( VtepLeaves const & event );
   void take( VirtualPortIs const & event );
   void take( VirtualPortGoes const & event );
   void take( OtherKeyIs const & event );
   void take( OtherKeyGoes const & event );
   void take( TunnelIs const & event );
   void take( TunnelGoes const & event );
   void take( TunnelReplaced const & event );
   void take( VniIs const & event );
   void take( VniGoes const & event );
   void take( GrantIs const & event );
   void take( GrantGoes const & event );
   void take( OthersHold const & event );
   void take( Ready const & event );
   void take( Pass const & event );
   void take( CallFails const & event ) { groups_.fails( event ); }
   void take( EntryIsRefused const & event ) { groups_.fails( event ); }
   void take( RuleDrifts const & event ) { groups_.drifts( event ); }

   void lagIs( Interface const & member, Interface const & portChannel );
   void joined( Vtep const & vtep, Interface const & segment );
   void left( Vtep const & vtep, Interface const & segment );

   Device device_;
   Facts facts_;
   Groups groups_;
   Senders senders_;
   Vnis vnis_;
   bool isReady_ = false;
   std::string pass_;
   std::optional< Stop > stop_;
};

}  // namespace Reference
