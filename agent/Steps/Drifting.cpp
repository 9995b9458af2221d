#include <Steps/Drifting.h>

#include <fmt/format.h>

#include <Drift/Drift.h>
#include <Quelm/Error.h>

namespace Steps {

namespace {

// "its entries are 1, 2, 3 and 7 more"
std::string entriesOf( Chip::Group const & group ) {
   constexpr std::size_t kMost = 20;
   std::vector< U32 > ids;
   for ( Chip::Entry const * const entry : group.entries() ) {
      ids.push_back( entry->id() );
   }
   std::size_t const more = ids.size() > kMost ? ids.size() - kMost : 0;
   ids.resize( ids.size() - more );
   return ids.empty() ? "the group is empty"
                      : fmt::format( "its entries are {}{}", fmt::join( ids, ", " ),
                                     more == 0 ? "" : fmt::format( " and {} more", more ) );
}

// The id of the one rule whose name contains the text.
U32 idOfNamed( Chip::Group const & group, std::string const & text ) {
   U32 found = 0;
   for ( Chip::Entry const * const entry : group.entries() ) {
      if ( entry->name().find( text ) == std::string::npos ) {
         continue;
      }
      if ( found != 0 ) {
         throw Quelm::AccessError( fmt::format(
            "the names of entries {} and {} both contain \"{}\"; give more of the name, or the "
            "entry's id",
            found, entry->id(), text ) );
      }
      found = entry->id();
   }
   if ( found == 0 ) {
      throw Quelm::AccessError(
         fmt::format( "no entry of group {} has \"{}\" in its name; {}, and 'dump: rules' shows "
                      "their names",
                      group.assignment(), text, entriesOf( group ) ) );
   }
   return found;
}

U32 idOf( Chip::Group const & group, RuleNamed const & rule ) {
   auto const * const id = std::get_if< U32 >( &rule );
   if ( id && !group.entry( *id ) ) {
      throw Quelm::AccessError( fmt::format( "group {} has no entry {}; {}", group.assignment(),
                                             *id, entriesOf( group ) ) );
   }
   return id ? *id : idOfNamed( group, std::get< std::string >( rule ) );
}

// For an entry that exists.
std::string reasonOf( Chip::ResultCode code ) {
   switch ( code ) {
   case Chip::ResultCode::NotFound:
      return "the rule lacks the part to change; 'dump: rules' shows its parts";
   case Chip::ResultCode::NotInstalled: return "it is staged only, and drift changes written rules";
   case Chip::ResultCode::Unsupported:
      return "no rule of this group has that part; 'dump: rules' shows their parts";
   case Chip::ResultCode::UnknownEntry:
      return "it is staged only, or the group has no room for a copy";
   default: return std::string( Chip::resultText( Chip::codeOf( code ) ) );
   }
}

// One drift of one rule; each operator makes one kind of change.
struct Changing {
   Chip::Drift drift;
   Chip::Group & group;
   U32 id;
   U32 other;  // another rule that changes too; 0: none

   using Result = Chip::ResultCode;

   Result operator()( PartFlips const & change ) {
      return std::visit( Story::Overloaded{
                            [ & ]( Chip::Qualifier part ) { return drift.dataFlips( id, part ); },
                            [ & ]( Chip::Action part ) { return drift.numberFlips( id, part ); } },
                         change.part );
   }
   Result operator()( QualifierMaskChanges const & change ) {
      return drift.maskIs( id, change.qualifier, change.mask );
   }
   Result operator()( EgressMaskChanges const & change ) {
      return drift.egressMaskIs( id, change.ports );
   }
   Result operator()( PriorityChanges const & change ) {
      return drift.priorityIs( id, change.priority );
   }
   Result operator()( PartGoes const & change ) {
      return std::visit( [ & ]( auto part ) { return drift.remove( id, part ); }, change.part );
   }
   Result operator()( EntryFate const & change ) {
      switch ( change ) {
      case EntryFate::erased: return drift.erase( id );
      case EntryFate::destroyed: return drift.destroy( id );
      case EntryFate::copied: break;
      }
      other = drift.copy( id );
      return other == 0 ? Result::UnknownEntry : Result::None;
   }
   Result operator()( GportsSwap const & change ) {
      other = idOf( group, change.with );
      return drift.gportsSwap( id, other );
   }
};

}  // namespace

void drift( DriftStep const & what, Chip::Units & units, Reporters::ChipReporter & reporter ) {
   Vornal::TcamGroupAssignment const assignment = assignmentOf( what.group );
   Chip::Group * const group = units.group( what.unit, assignment );
   if ( !group ) {
      throw Quelm::AccessError( fmt::format( "unit {} has no group {}", what.unit, assignment ) );
   }
   U32 const id = idOf( *group, what.rule );
   Changing changing{ Chip::Drift( *group ), *group, id, 0 };
   Chip::ResultCode const code = std::visit( changing, what.change );
   if ( code != Chip::ResultCode::None ) {
      throw Quelm::AccessError(
         fmt::format( "entry {} of group {} on unit {} cannot drift like this: {}", id, assignment,
                      what.unit, reasonOf( code ) ) );
   }
   reporter.reportRule( what.unit, id );
   if ( changing.other != 0 ) {
      reporter.reportRule( what.unit, changing.other );
   }
}

}  // namespace Steps
