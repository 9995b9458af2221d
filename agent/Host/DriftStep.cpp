#include <Host/DriftStep.h>

#include <fmt/format.h>

#include <Drift/Drift.h>
#include <Host/Expectations.h>
#include <Quelm/Error.h>

namespace Host {

namespace {

// The id of the one rule whose name contains the text.
U32 idOfNamed( Chip::Group const & group, std::string const & text ) {
   U32 found = 0;
   for ( auto const & [ id, entry ] : group.entries() ) {
      if ( entry.name().find( text ) == std::string::npos ) {
         continue;
      }
      if ( found != 0 ) {
         throw Quelm::AccessError( fmt::format(
            "the names of entries {} and {} both contain \"{}\"; give more of the name, or the "
            "entry's id",
            found, id, text ) );
      }
      found = id;
   }
   if ( found == 0 ) {
      throw Quelm::AccessError(
         fmt::format( "no entry of group {} has \"{}\" in its name", group.assignment(), text ) );
   }
   return found;
}

U32 idOf( Chip::Group const & group, Scenario::RuleNamed const & rule ) {
   auto const * const id = std::get_if< U32 >( &rule );
   return id ? *id : idOfNamed( group, std::get< std::string >( rule ) );
}

// One drift of one rule; each operator makes one kind of change.
struct Changing {
   Chip::Drift drift;
   Chip::Group & group;
   U32 id;
   U32 other;  // another rule that changes as well; 0: none

   using Result = Chip::ResultCode;

   Result operator()( Scenario::PartFlips const & change ) {
      return std::visit( Story::Overloaded{
                            [ & ]( Chip::Qualifier part ) { return drift.dataFlips( id, part ); },
                            [ & ]( Chip::Action part ) { return drift.numberFlips( id, part ); } },
                         change.part );
   }
   Result operator()( Scenario::QualifierMaskIs const & change ) {
      return drift.maskIs( id, change.qualifier, change.mask );
   }
   Result operator()( Scenario::EgressMaskIs const & change ) {
      return drift.egressMaskIs( id, change.ports );
   }
   Result operator()( Scenario::PriorityIs const & change ) {
      return drift.priorityIs( id, change.priority );
   }
   Result operator()( Scenario::PartGoes const & change ) {
      return std::visit( [ & ]( auto part ) { return drift.remove( id, part ); }, change.part );
   }
   Result operator()( Scenario::EntryFate const & change ) {
      switch ( change ) {
      case Scenario::EntryFate::erased: return drift.erase( id );
      case Scenario::EntryFate::destroyed: return drift.destroy( id );
      case Scenario::EntryFate::copied: break;
      }
      other = drift.copy( id );
      return other == 0 ? Result::UnknownEntry : Result::None;
   }
   Result operator()( Scenario::GportsSwap const & change ) {
      other = idOf( group, change.with );
      return drift.gportsSwap( id, other );
   }
};

}  // namespace

void drift( Scenario::Drift const & what, Chip::Units & units,
            Reporters::ChipReporter & reporter ) {
   Vornal::TcamGroupAssignment const assignment = assignmentOf( what.group );
   Chip::Group * const group = units.group( what.unit, assignment );
   if ( !group ) {
      throw Quelm::AccessError( fmt::format( "unit {} has no group {}", what.unit, assignment ) );
   }
   U32 const id = idOf( *group, what.rule );
   Changing changing{ Chip::Drift( *group ), *group, id, 0 };
   Chip::ResultCode const code = std::visit( changing, what.change );
   if ( code != Chip::ResultCode::None ) {
      throw Quelm::AccessError( fmt::format( "entry {} of group {} on unit {} cannot drift so: {}",
                                             id, assignment, what.unit,
                                             Chip::resultText( Chip::codeOf( code ) ) ) );
   }
   reporter.tellRule( what.unit, id );
   if ( changing.other != 0 ) {
      reporter.tellRule( what.unit, changing.other );
   }
}

}  // namespace Host
