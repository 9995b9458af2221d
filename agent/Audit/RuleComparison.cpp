// Compares the chip's entries with the expected rules.

#include <Audit/Comparison.h>

namespace Audit {

namespace {

using Chip::EntryContent;

// Compares a rule in the chip with the expected one.
class EntryComparison {
 public:
   EntryComparison( RuleFor const & what, WantedRule const & rule, Chip::Entry const & entry,
                    Chip::NameOf const & names, Differences & found )
         : what_( what ), rule_( rule ), entry_( entry ), names_( names ), found_( found ) {}

   void check() {
      if ( !entry_.written() ) {
         add( DifferenceKind::stagedOnly, {}, "staged, not in the hardware",
              Chip::contentText( rule_.content, names_ ) );
         return;
      }
      for ( Chip::Qualifier const qualifier : Chip::kQualifiers ) {
         checkQualifier( qualifier, written()[ qualifier ], rule_.content[ qualifier ] );
      }
      for ( Chip::Action const action : Chip::kActions ) {
         checkAction( action, written()[ action ], rule_.content[ action ] );
      }
      if ( written().priority != rule_.content.priority ) {
         add( DifferenceKind::wrongPriority, "priority", Chip::priorityText( written().priority ),
              Chip::priorityText( rule_.content.priority ) );
      }
      checkStaged();
   }

 private:
   using Match = std::optional< Chip::Match >;
   using Parameters = std::optional< Chip::ActionParameters >;

   void checkQualifier( Chip::Qualifier qualifier, Match const & actual, Match const & expected ) {
      if ( actual == expected ) {
         return;
      }
      bool const isOnlyMask =
         actual && expected && actual->data == expected->data && actual->modId == expected->modId;
      add( isOnlyMask ? DifferenceKind::wrongMask : DifferenceKind::wrongQualifier,
           nameOf( qualifier ), textOf( qualifier, actual ), textOf( qualifier, expected ) );
   }

   void checkAction( Chip::Action action, Parameters const & actual, Parameters const & expected ) {
      if ( actual == expected ) {
         return;
      }
      bool const isPorts = actual && expected && actual->ports != expected->ports;
      add( isPorts ? DifferenceKind::wrongMask : DifferenceKind::wrongAction, nameOf( action ),
           valueText( action, actual ), valueText( action, expected ) );
   }

   // Reports what the next reinstall would make worse. A fault in the hardware is reported instead.
   void checkStaged() {
      for ( Chip::Qualifier const qualifier : Chip::kQualifiers ) {
         checkStagedPart( qualifier );
      }
      for ( Chip::Action const action : Chip::kActions ) {
         checkStagedPart( action );
      }
      if ( isOnlyStaged( written().priority, rule_.content.priority, staged().priority ) ) {
         add( DifferenceKind::stagedDiffers, "priority",
              Chip::priorityText( staged().priority ) + kStaged,
              Chip::priorityText( rule_.content.priority ) );
      }
   }

   template< typename Part > void checkStagedPart( Part part ) {
      if ( isOnlyStaged( written()[ part ], rule_.content[ part ], staged()[ part ] ) ) {
         add( DifferenceKind::stagedDiffers, nameOf( part ),
              textOf( part, staged()[ part ] ) + kStaged, textOf( part, rule_.content[ part ] ) );
      }
   }

   std::string textOf( Chip::Qualifier qualifier, Match const & match ) const {
      return valueText( qualifier, match, names_ );
   }
   static std::string textOf( Chip::Action action, Parameters const & parameters ) {
      return valueText( action, parameters );
   }

   template< typename T >
   static bool isOnlyStaged( T const & written, T const & wanted, T const & staged ) {
      return written == wanted && staged != written;
   }

   static constexpr char const * kStaged = ", staged for the next reinstall";

   void add( DifferenceKind kind, std::string_view field, std::string actual,
             std::string expected ) {
      Difference difference = differenceFor( what_, kind, entry_.name() );
      difference.entry = entry_.id();
      difference.field = field;
      difference.actual = std::move( actual );
      difference.expected = std::move( expected );
      difference.because = rule_.because;
      found_.push_back( std::move( difference ) );
   }

   EntryContent const & written() const { return *entry_.written(); }
   EntryContent const & staged() const { return entry_.staged(); }

   RuleFor const & what_;
   WantedRule const & rule_;
   Chip::Entry const & entry_;
   Chip::NameOf const & names_;
   Differences & found_;
};

void addAbsent( Sides const & sides, RuleFor const & what, WantedRule const & rule,
                Differences & found ) {
   Absence const absence = whyAbsent( sides, what );
   Difference difference = differenceFor( what, absence.kind, rule.name );
   difference.actual = "no such rule";
   difference.expected = Chip::contentText( rule.content, sides.names );
   difference.because =
      absence.reason.empty() ? rule.because : rule.because + "; " + absence.reason;
   found.push_back( std::move( difference ) );
}

void addWithdrawnClassId( RuleFor const & what, WantedRule const & rule, Chip::Entry const & entry,
                          Differences & found ) {
   Difference difference = differenceFor( what, DifferenceKind::classIdWithdrawn, entry.name() );
   difference.entry = entry.id();
   difference.field = nameOf( Chip::Action::NewClassId );
   difference.actual =
      valueText( Chip::Action::NewClassId, rule.content[ Chip::Action::NewClassId ] );
   difference.expected = "a class id that is granted";
   difference.because = rule.because + "; its class id is not granted any more";
   found.push_back( std::move( difference ) );
}

// --- Unexpected entries

// The purpose that a record gives for the entry; nullptr without a record.
RuleFor const * recordedFor( Records const & records, EntryAt const & at ) {
   for ( auto const & [ what, record ] : records.entries ) {
      if ( record.id == at.entry->id() && what.unit == at.unit && what.group() == at.group ) {
         return &what;
      }
   }
   return nullptr;
}

void addUnexpected( Sides const & sides, EntryAt const & at, Differences & found ) {
   RuleFor const * const what = recordedFor( sides.records, at );
   bool const isLeft =
      what && what->purpose == Purpose::vni && sides.state.leftVnis.contains( what->vni );
   Difference difference;
   difference.kind = isLeft ? DifferenceKind::leftBehind : DifferenceKind::unexpectedRule;
   difference.unit = at.unit;
   difference.group = at.group;
   difference.entry = at.entry->id();
   difference.rule = at.entry->name();
   difference.actual =
      Chip::contentText( at.entry->written() ? *at.entry->written() : at.entry->staged(),
                         sides.names );
   if ( !at.entry->written() ) {
      difference.actual += "; staged, not in the hardware";
   }
   difference.expected = "no such rule";
   difference.because = what ? whyUnexpected( sides.state, *what ) : "no published state needs it";
   found.push_back( std::move( difference ) );
}

}  // namespace

void compareRules( Sides const & sides, Differences & found ) {
   for ( auto const & [ what, rule ] : sides.wanted ) {
      auto const * const entry = findIn( sides.matched.rules, what );
      if ( !entry ) {
         addAbsent( sides, what, rule, found );
         continue;
      }
      EntryComparison( what, rule, **entry, sides.names, found ).check();
      if ( rule.isWithoutClassId && what.purpose == Purpose::vtep ) {
         addWithdrawnClassId( what, rule, **entry, found );
      }
   }
   for ( EntryAt const & at : sides.matched.others ) {
      addUnexpected( sides, at, found );
   }
}

}  // namespace Audit
