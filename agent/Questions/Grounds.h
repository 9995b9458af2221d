// The state and the steps behind the rules of the chip, as nodes of an explanation.
#pragma once

#include <map>
#include <set>

#include <Explanation/Comparison.h>
#include <Questions/Context.h>
#include <Questions/Names.h>
#include <Snapshot/Rules.h>
#include <Story/Node.h>

namespace Questions {

class Grounds {
 public:
   explicit Grounds( Context const & context );

   Names const & names() const { return names_; }
   Audit::State const & state() const { return state_; }
   // VTEPs without all their rules, with the reason.
   std::map< Pelk::IpGenAddr, std::string > const & unprotected() const { return unprotected_; }

   // A lookup in the rules of a kind: the frame's fields, the winner with its grounds, the other
   // rules that match, and the near misses. `where` begins its text.
   Story::Node lookup( std::string const & where, Chip::GroupKind kind,
                       Chip::KeyFields const & frame,
                       Chip::GroupComparison const & comparison ) const;

   // The interfaces that are to carry VLANs or VXLAN.
   std::set< Pelk::IntfId > const & configured() const { return configured_; }

   // Whether the winner of a lookup does nothing, so that the frame passes all rules below it.
   bool isExempt( Chip::GroupComparison const & comparison ) const;
   // "Ethernet3", or a text that names the port where no interface has it.
   std::string interfaceAt( VornalTypes::VornalPort const & port ) const {
      return names_.interfaceAt( port );
   }
   // ", learned from frame 3 in step 7"
   std::string learnedText( U64 frame ) const;
   // The step in which the frame came in.
   Story::Cell stepOf( U64 frame ) const;

   // "unit 0 entry 3".
   static std::string placeOf( Chip::RuleKey const & rule );

 private:
   Chip::Rule const & ruleAt( Chip::RuleKey const & key ) const { return rules_.at( key ); }
   // Why the winner stands above the second rule that matches.
   std::string wonByText( Chip::GroupComparison const & comparison ) const;
   // A rule that matches; `why` it wins is empty for one that does not.
   Story::Node matching( Chip::RuleComparison const & rule, std::string const & why ) const;
   void addRules( Chip::GroupComparison const & comparison, Story::Node & lookup ) const;
   // Adds the nearest of the rules that miss, and the number of the others.
   void addMisses( Chip::GroupComparison const & comparison, Story::Node & lookup ) const;
   Story::Node missing( Chip::RuleComparison const & rule ) const;
   // The name, the state and the steps behind a rule, as nodes below it.
   void addGrounds( Chip::RuleKey const & key, Story::Node & rule ) const;
   std::string becauseOf( Chip::RuleKey const & key ) const;
   // "step 9 (ready subagents::l2Ready)".
   std::string stepText( U32 step ) const;
   std::string stepsText( Chronicle::Steps const & steps ) const;
   // "does EgressMask ports 3, 4: the frame does not leave by these".
   static std::string effectOf( Chip::EntryContent const & winner );
   std::string meaningOf( Chip::Qualifier qualifier, U32 number ) const;
   std::string portText( U32 number, U32 module ) const;
   std::string numberText( Chip::Qualifier qualifier, U32 number ) const;
   std::string fieldText( Chip::Qualifier qualifier, U32 number, U32 module ) const;
   std::string failedText( Chip::FailedQualifier const & failed ) const;

   Audit::State state_;
   Names names_;
   std::map< Chip::RuleKey, Chip::Rule > rules_;
   std::map< Chip::RuleKey, Audit::ExpectedEntry > expected_;
   std::map< Pelk::IpGenAddr, std::string > unprotected_;
   std::set< Pelk::IntfId > configured_;
   Chronicle const & chronicle_;
};

}  // namespace Questions
