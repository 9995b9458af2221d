#include <Questions/Grounds.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>

namespace Questions {

namespace {

using Story::Node;

std::string wonByText( Chip::WonBy wonBy ) {
   switch ( wonBy ) {
   case Chip::WonBy::OnlyMatch: return "no other rule matches";
   case Chip::WonBy::NoPriority: return "the default priority stands above all others";
   case Chip::WonBy::HigherPriority: return "its priority is higher than the next one's";
   case Chip::WonBy::Older: break;
   }
   return "it is older than the next one of its priority";
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
        chronicle_( context.chronicle ) {}

std::string Grounds::placeOf( Chip::RuleKey const & rule ) {
   return fmt::format( "unit {} entry {}", rule.unit, rule.id );
}

// "0x56000002 (VTEP 10.0.0.2)".
std::string Grounds::numberText( Chip::Qualifier qualifier, U32 number ) const {
   Chip::Match const exactly{ .data = number, .mask = ~0U };
   std::string const name = names_( qualifier, number );
   return Chip::valueText( qualifier, exactly ) + ( name.empty() ? "" : " (" + name + ")" );
}

// "0x56000002 (VTEP 10.0.0.2)", "module 1 port 3".
std::string Grounds::fieldText( Chip::Qualifier qualifier, U32 number, U32 module ) const {
   return Chip::rowOf( qualifier ).hasModule ? fmt::format( "module {} port {}", module, number )
                                             : numberText( qualifier, number );
}

// "PacketRes is 1 (broadcast), not 4 (known unicast)".
std::string Grounds::failedText( Chip::FailedQualifier const & failed ) const {
   return fmt::format( "{} is {}, not {}", Chip::nameOf( failed.qualifier ),
                       fieldText( failed.qualifier, failed.got, failed.gotModId ),
                       fieldText( failed.qualifier, failed.expected.data, failed.expected.modId ) );
}

void Grounds::addGrounds( Chip::RuleKey const & key, Node & rule ) const {
   rule.add( { "name", '"' + ruleAt( key ).name + '"', { { "name", ruleAt( key ).name } } } );
   auto const expected = expected_.find( key );
   std::string const because = expected == expected_.end()
                                  ? "nothing that is published; the rule is not expected"
                                  : expected->second.because;
   rule.add( { "because", "because of this: " + because, { { "because", because } } } );
   auto const steps = chronicle_.rules().find( key );
   if ( steps != chronicle_.rules().end() ) {
      U64 const programmed = steps->second.programmed;
      U64 const changed = steps->second.changed;
      rule.add(
         { "steps",
           fmt::format( "programmed in step {}, last changed in step {}", programmed, changed ),
           { { "programmedIn", programmed }, { "changedIn", changed } } } );
   }
}

Node Grounds::matching( Chip::RuleComparison const & rule, std::string const & why ) const {
   Chip::EntryContent const & content = ruleAt( rule.rule ).content;
   std::string const does = Chip::actionsText( content );
   Node node{ "match",
              fmt::format( "entry {} matches; does {}{}", rule.rule.id, does, why ),
              { { "unit", U64{ rule.rule.unit } },
                { "entry", U64{ rule.rule.id } },
                { "matches", Chip::qualifiersText( content, names_ ) },
                { "does", does } } };
   return node;
}

Node Grounds::missing( Chip::RuleComparison const & rule ) const {
   std::vector< std::string > texts;
   for ( Chip::FailedQualifier const & failed : rule.failed ) {
      texts.push_back( failedText( failed ) );
   }
   return {
      "near-miss",
      fmt::format( "entry {} misses: {}", rule.rule.id, fmt::join( texts, "; " ) ),
      { { "unit", U64{ rule.rule.unit } }, { "entry", U64{ rule.rule.id } }, { "failed", texts } }
   };
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
   node.text = fmt::format( "{}: {}", where, fmt::join( texts, ", " ) );
   addRules( comparison, node );
   return node;
}

void Grounds::addRules( Chip::GroupComparison const & comparison, Node & lookup ) const {
   Chip::RuleComparison const * const winner = comparison.winner();
   if ( !winner ) {
      lookup.add( { "no-match", "no rule matches" } );
   }
   for ( Chip::RuleComparison const & rule : comparison.rules ) {
      if ( &rule == winner ) {
         Node & node = lookup.add(
            matching( rule, fmt::format( "; it wins: {}", wonByText( *comparison.wonBy ) ) ) );
         node.kind = "winner";
         addGrounds( rule.rule, node );
      } else {
         lookup.add( rule.isMatch() ? matching( rule, "; it does not win" ) : missing( rule ) );
      }
   }
   if ( comparison.leftOut != 0 ) {
      lookup.add( { "left-out",
                    fmt::format( "{} more rules miss", comparison.leftOut ),
                    { { "rules", U64{ comparison.leftOut } } } } );
   }
}

}  // namespace Questions
