#include <Report/FrameList.h>

#include <utility>

namespace Report {

namespace {

template< typename T >
std::optional< TextId > textOf( std::optional< T > const & value, Texts & texts ) {
   return value ? std::optional( texts.idOf( value->stringValue() ) ) : std::nullopt;
}

std::optional< U32 > numberOf( std::optional< Chip::RuleKey > const & rule,
                               RuleHistory const & rules ) {
   return rule ? rules.at( *rule ) : std::nullopt;
}

FrameCopy copyOf( Chip::Copy const & copy, RuleHistory const & rules, Texts & texts ) {
   bool const hasPort = copy.port.isValid() && copy.verdict != Chip::Verdict::NoPort;
   return { .interface = texts.idOf( copy.intfId.stringValue() ),
            .unit = hasPort ? std::optional< U32 >( copy.port.unit() ) : std::nullopt,
            .port = hasPort ? std::optional< U32 >( copy.port.logicalPort() ) : std::nullopt,
            .vtep = textOf( copy.remoteVtep, texts ),
            .verdict = texts.idOf( std::string( nameOf( copy.verdict ) ) ),
            .rule = numberOf( copy.rule, rules ) };
}

FrameFate fateOf( Chip::FrameStory const & frame, RuleHistory const & rules, Texts & texts ) {
   FrameFate fate;
   if ( frame.dropReason ) {
      fate.dropReason = texts.idOf( std::string( nameOf( *frame.dropReason ) ) );
   }
   for ( Chip::IngressStory const & lookup : frame.ingress ) {
      fate.lookups.push_back( { lookup.unit, numberOf( lookup.rule, rules ), lookup.classId } );
   }
   for ( Chip::Copy const & copy : frame.copies ) {
      fate.copies.push_back( copyOf( copy, rules, texts ) );
   }
   return fate;
}

}  // namespace

void FrameList::explanationIs( U32 tree, bool isTwice ) {
   nextTree_ = tree;
   isNextTwice_ = isTwice;
}

U32 FrameList::numberOf( FrameFate fate ) {
   auto const next = static_cast< U32 >( fates_.size() );
   auto const [ known, isNew ] = fateNumbers_.try_emplace( fate, next );
   if ( isNew ) {
      fates_.push_back( std::move( fate ) );
   }
   return known->second;
}

void FrameList::add( Chip::FrameStory const & frame, U32 step, RuleHistory const & rules,
                     Texts & texts ) {
   auto const tree = std::exchange( nextTree_, std::nullopt );
   if ( isFull() ) {
      return;
   }
   ListedFrame listed{ .step = step,
                       .arrival = texts.idOf( frame.arrivalIntfId.stringValue() ),
                       .unit = frame.arrivalPort.unit(),
                       .port = frame.arrivalPort.logicalPort(),
                       .length = frame.length };
   if ( frame.tunnel ) {
      listed.vtep = texts.idOf( frame.tunnel->source.stringValue() );
      listed.vni = frame.tunnel->vni;
   }
   if ( frame.kind ) {
      listed.kind = texts.idOf( std::string( nameOf( *frame.kind ) ) );
   }
   if ( frame.inner ) {
      listed.source = texts.idOf( frame.inner->source.stringValue() );
      listed.destination = texts.idOf( frame.inner->destination.stringValue() );
      listed.vlan = frame.inner->vlan;
   }
   listed.fate = numberOf( fateOf( frame, rules, texts ) );
   listed.explanation = tree;
   listed.isTwice = tree && isNextTwice_;
   explained_ += tree ? 1U : 0U;
   frames_.push_back( listed );
}

}  // namespace Report
