// The state and the steps behind the rules of the chip, as nodes of an explanation.
#pragma once

#include <map>

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

   // "unit 0 entry 3".
   static std::string placeOf( Chip::RuleKey const & rule );

 private:
   Chip::Rule const & ruleAt( Chip::RuleKey const & key ) const { return rules_.at( key ); }
   Story::Node matching( Chip::RuleComparison const & rule, std::string const & why ) const;
   void addRules( Chip::GroupComparison const & comparison, Story::Node & lookup ) const;
   Story::Node missing( Chip::RuleComparison const & rule ) const;
   void addGrounds( Chip::RuleKey const & key, Story::Node & rule ) const;
   std::string numberText( Chip::Qualifier qualifier, U32 number ) const;
   std::string fieldText( Chip::Qualifier qualifier, U32 number, U32 module ) const;
   std::string failedText( Chip::FailedQualifier const & failed ) const;

   Audit::State state_;
   Names names_;
   std::map< Chip::RuleKey, Chip::Rule > rules_;
   std::map< Chip::RuleKey, Audit::ExpectedEntry > expected_;
   std::map< Pelk::IpGenAddr, std::string > unprotected_;
   Chronicle const & chronicle_;
};

}  // namespace Questions
