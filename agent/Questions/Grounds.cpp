#include <Questions/Grounds.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>
#include <Story/Wording.h>

namespace Questions {

namespace {

using Story::Node;

// What a number means by itself, where neither the state nor the chip has a name for it.
std::string meaningInFrame( Chip::Qualifier qualifier, U32 number ) {
   if ( qualifier != Chip::Qualifier::IpType ) {
      return number == 0 ? "none" : "";
   }
   switch ( number ) {
   case bcmFieldIpTypeNonIp: return "not IP";
   case bcmFieldIpTypeIpv4Any: return "IPv4";
   case bcmFieldIpTypeIpv6: return "IPv6";
   default: return "any";
   }
}

std::map< Chip::RuleKey, Chip::Rule > byKey( Chip::Rules const & rules ) {
   std::map< Chip::RuleKey, Chip::Rule > result;
   for ( Chip::Rule const & rule : rules ) {
      result[ rule.key ] = rule;
   }
   return result;
}

}  // namespace

Grounds::Grounds( Context const & context )
      : state_( context.auditor.state() ),
        names_( state_ ),
        rules_( byKey( Chip::rulesOf( context.units ) ) ),
        expected_( context.auditor.expectedEntries() ),
        unprotected_( context.auditor.report().unprotected ),
        configured_( context.traffic.configured() ),
        chronicle_( context.chronicle ) {}

std::string Grounds::placeOf( Chip::RuleKey const & rule ) {
   return fmt::format( "unit {} entry {}", rule.unit, rule.id );
}

std::string Grounds::meaningOf( Chip::Qualifier qualifier, U32 number ) const {
   std::string const name = names_( qualifier, number );
   return name.empty() ? meaningInFrame( qualifier, number ) : name;
}

// "0x56000002 (VTEP 10.0.0.2)".
std::string Grounds::numberText( Chip::Qualifier qualifier, U32 number ) const {
   Chip::Match const exactly{ .data = number, .mask = ~0U };
   std::string const meaning = meaningOf( qualifier, number );
   return Chip::valueText( qualifier, exactly ) + ( meaning.empty() ? "" : " (" + meaning + ")" );
}

// "module 1 port 3 (Ethernet3)".
std::string Grounds::portText( U32 number, U32 module ) const {
   std::string text = fmt::format( "module {} port {}", module, number );
   for ( auto const & [ intf, port ] : state_.ports ) {
      auto const unit = state_.modules.find( port.unit() );
      bool const isThere = unit != state_.modules.end() && unit->second == module;
      if ( isThere && port.isValid() && port.logicalPort() == number ) {
         text += " (" + intf.stringValue() + ")";
      }
   }
   return text;
}

// "0x56000002 (VTEP 10.0.0.2)", "module 1 port 3 (Ethernet3)".
std::string Grounds::fieldText( Chip::Qualifier qualifier, U32 number, U32 module ) const {
   return Chip::rowOf( qualifier ).hasModule ? portText( number, module )
                                             : numberText( qualifier, number );
}

// "PacketRes is 1 (broadcast), not 4 (known unicast)".
std::string Grounds::failedText( Chip::FailedQualifier const & failed ) const {
   return fmt::format( "{} is {}, not {}", Chip::nameOf( failed.qualifier ),
                       fieldText( failed.qualifier, failed.got, failed.gotModId ),
                       fieldText( failed.qualifier, failed.expected.data, failed.expected.modId ) );
}

bool Grounds::isExempt( Chip::GroupComparison const & comparison ) const {
   auto const * const winner = comparison.winner();
   return winner && Chip::actionsText( ruleAt( winner->rule ).content ) == "nothing";
}

Story::Cell Grounds::stepOf( U64 frame ) const {
   auto const step = chronicle_.stepOf( frame );
   return step ? Story::Cell( U64{ *step } ) : Story::Cell();
}

std::string Grounds::learnedText( U64 frame ) const {
   return fmt::format( "learned from frame {} in step {}", frame, stepOf( frame ).words() );
}

std::string Grounds::effectOf( Chip::EntryContent const & winner ) {
   std::string const actions = Chip::actionsText( winner );
   std::string const does = "does " + actions;
   if ( winner[ Chip::Action::EgressMask ] ) {
      return does + ": the frame does not leave by these";
   }
   if ( winner[ Chip::Action::Drop ] ) {
      return does + ": the copy does not leave";
   }
   return actions == "nothing" ? does + ", so no rule below it does anything either" : does;
}

// "its priority 2 is above priority 1 of entry 3".
std::string Grounds::wonByText( Chip::GroupComparison const & comparison ) const {
   if ( *comparison.wonBy == Chip::WonBy::OnlyMatch ) {
      return "no other rule matches";
   }
   Chip::RuleComparison const & winner = comparison.rules[ 0 ];
   Chip::RuleComparison const & second = comparison.rules[ 1 ];
   std::string const own = Chip::priorityText( winner.priority );
   if ( *comparison.wonBy == Chip::WonBy::Older ) {
      return fmt::format( "it is older than entry {}, which has {} as well", second.rule.id, own );
   }
   return winner.priority ? fmt::format( "its {} is above {} of entry {}", own,
                                         Chip::priorityText( second.priority ), second.rule.id )
                          : fmt::format( "{} is above {} of entry {}", own,
                                         Chip::priorityText( second.priority ), second.rule.id );
}

std::string Grounds::becauseOf( Chip::RuleKey const & key ) const {
   auto const expected = expected_.find( key );
   return expected == expected_.end() ? "nothing that is published; the rule is not expected"
                                      : expected->second.because;
}

std::string Grounds::stepText( U32 step ) const {
   return fmt::format( "step {} ({})", step, chronicle_.textOf( step ) );
}

std::string Grounds::stepsText( Chronicle::Steps const & steps ) const {
   std::string const text = "programmed in " + stepText( steps.programmed );
   return steps.changed == steps.programmed
             ? text + ", not changed since"
             : text + ", last changed in " + stepText( steps.changed );
}

void Grounds::addGrounds( Chip::RuleKey const & key, Node & rule ) const {
   rule.add( { "name", '"' + ruleAt( key ).name + '"', { { "name", ruleAt( key ).name } } } );
   std::string const because = becauseOf( key );
   rule.add( { "because", "because of this state: " + because, { { "because", because } } } );
   auto const steps = chronicle_.rules().find( key );
   if ( steps != chronicle_.rules().end() ) {
      rule.add( { "steps",
                  stepsText( steps->second ),
                  { { "programmedIn", U64{ steps->second.programmed } },
                    { "changedIn", U64{ steps->second.changed } } } } );
   }
}

Node Grounds::matching( Chip::RuleComparison const & rule, std::string const & why ) const {
   Chip::EntryContent const & content = ruleAt( rule.rule ).content;
   Node node{ "match",
              fmt::format( "entry {} matches, and {}", rule.rule.id,
                           why.empty() ? "loses" : "wins: " + why ),
              { { "unit", U64{ rule.rule.unit } },
                { "entry", U64{ rule.rule.id } },
                { "matches", Chip::qualifiersText( content, names_ ) },
                { "does", Chip::actionsText( content ) } } };
   node.add( { "effect",
               why.empty() ? "would do " + Chip::actionsText( content ) : effectOf( content ),
               {} } );
   addGrounds( rule.rule, node );
   return node;
}

Node Grounds::missing( Chip::RuleComparison const & rule ) const {
   std::vector< std::string > texts;
   for ( Chip::FailedQualifier const & failed : rule.failed ) {
      texts.push_back( failedText( failed ) );
   }
   auto const steps = chronicle_.rules().find( rule.rule );
   bool const hasSteps = steps != chronicle_.rules().end();
   return { "near-miss",
            fmt::format( "entry {} misses: {}", rule.rule.id, fmt::join( texts, "; " ) ),
            { { "unit", U64{ rule.rule.unit } },
              { "entry", U64{ rule.rule.id } },
              { "failed", texts },
              { "name", ruleAt( rule.rule ).name },
              { "because", becauseOf( rule.rule ) },
              { "programmedIn",
                hasSteps ? Story::Cell( U64{ steps->second.programmed } ) : Story::Cell() },
              { "changedIn",
                hasSteps ? Story::Cell( U64{ steps->second.changed } ) : Story::Cell() } } };
}

Node Grounds::lookup( std::string const & where, Chip::GroupKind kind,
                      Chip::KeyFields const & frame,
                      Chip::GroupComparison const & comparison ) const {
   Node node{ kind == Chip::GroupKind::Ingress ? "ingress-lookup" : "egress-lookup", "" };
   std::vector< std::string > texts;
   for ( Chip::QualifierRow const & row : Chip::kQualifierTable ) {
      if ( row.kind == kind ) {
         U32 const number = frame[ row.keyPosition ];
         U32 const module = row.hasModule ? frame[ row.keyPosition + 1 ] : 0;
         texts.push_back(
            fmt::format( "{} {}", row.name, fieldText( row.qualifier, number, module ) ) );
         node.values.push_back( { std::string( row.name ), U64{ number } } );
      }
   }
   bool const isEmpty = comparison.rules.empty() && comparison.leftOut == 0;
   node.text = isEmpty ? where + ": there are none"
                       : fmt::format( "{}, for {}", where, fmt::join( texts, ", " ) );
   addRules( comparison, node );
   return node;
}

void Grounds::addRules( Chip::GroupComparison const & comparison, Node & lookup ) const {
   Chip::RuleComparison const * const winner = comparison.winner();
   if ( !winner && !comparison.rules.empty() ) {
      lookup.add( { "no-match", "no rule matches" } );
   }
   for ( Chip::RuleComparison const & rule : comparison.rules ) {
      if ( &rule == winner ) {
         Node & node = lookup.add( matching( rule, wonByText( comparison ) ) );
         node.kind = "winner";
      } else if ( rule.isMatch() ) {
         lookup.add( matching( rule, "" ) );
      }
   }
   addMisses( comparison, lookup );
}

void Grounds::addMisses( Chip::GroupComparison const & comparison, Node & lookup ) const {
   std::size_t nearest = 0;  // the fewest qualifiers by which a rule misses
   std::size_t others = comparison.leftOut;
   for ( Chip::RuleComparison const & rule : comparison.rules ) {
      if ( rule.isMatch() ) {
         continue;
      }
      nearest = nearest == 0 ? rule.failed.size() : nearest;
      if ( rule.failed.size() == nearest ) {
         lookup.add( missing( rule ) );
      } else {
         ++others;
      }
   }
   if ( others != 0 ) {
      lookup.add( { "left-out",
                    fmt::format( "{} {}", Story::counted( others, "other rule" ),
                                 others == 1 ? "misses" : "miss" ),
                    { { "rules", U64{ others } } } } );
   }
}

}  // namespace Questions
