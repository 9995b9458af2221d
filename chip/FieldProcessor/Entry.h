// One TCAM entry in two copies: the staged one, and the one written to the hardware.
//
// Qualifiers, actions and the priority go into the staged copy. Writing the entry (Group::install,
// Group::reinstall) makes the written copy equal to the staged one, as a whole: a priority set on
// an installed entry is in force from the next reinstall on, like everything else. The staged copy
// stays, and the next changes build on it. Between a write and the next change both are one object,
// since most entries are written once.
//
// Refused, and then nothing changes:
// - a qualifier or action that belongs to the other kind of group: Unsupported;
// - adding an action that is staged already: Exists. Updating replaces it, and is NotFound when
//   there is none. A qualifier that is staged already is replaced, as in a register;
// - reading back a qualifier or an action that the hardware does not have: NotFound.
//
// Threads: staging is done by the thread that makes field calls, with the activity lock given up.
// It changes nothing that a lookup reads: the first change after a write copies what both share.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include <FieldProcessor/Fields.h>
#include <FieldProcessor/ResultCode.h>

namespace Chip {

// One copy of an entry's content.
struct EntryContent {
   std::array< std::optional< Match >, kQualifiers.size() > matches{};
   std::array< std::optional< ActionParameters >, kActions.size() > actions{};
   std::optional< U32 > priority{};  // none: the group's default, above all others

   std::optional< Match > const & operator[]( Qualifier qualifier ) const {
      return matches[ static_cast< std::size_t >( qualifier ) ];
   }
   std::optional< ActionParameters > const & operator[]( Action action ) const {
      return actions[ static_cast< std::size_t >( action ) ];
   }
   std::optional< Match > & operator[]( Qualifier qualifier ) {
      return matches[ static_cast< std::size_t >( qualifier ) ];
   }
   std::optional< ActionParameters > & operator[]( Action action ) {
      return actions[ static_cast< std::size_t >( action ) ];
   }

   friend bool operator==( EntryContent const &, EntryContent const & ) = default;
};

class Entry {
 public:
   Entry( GroupKind kind, U32 id, std::string name )
         : kind_( kind ), id_( id ), name_( std::move( name ) ) {}

   U32 id() const { return id_; }
   std::string const & name() const { return name_; }

   EntryContent const & staged() const { return *staged_; }
   // nullptr while the entry is not in the hardware.
   EntryContent const * written() const { return written_.get(); }

   // --- Staging
   ResultCode qualify( Qualifier qualifier, Match const & match );
   ResultCode actionAdd( Action action, ActionParameters const & parameters );
   ResultCode actionUpdate( Action action, ActionParameters const & parameters );
   void priorityIs( U32 priority ) { own( staged_ ).priority = priority; }

   // --- Read-back of the written copy; the second argument is left alone on failure
   ResultCode readBack( Qualifier qualifier, Match & match ) const;
   ResultCode readBack( Action action, ActionParameters & parameters ) const;

 private:
   friend class Group;
   friend class Drift;  // changes the written copy as faulty hardware does (Drift/Drift.h)

   void write() { written_ = staged_; }
   // The content, for a change of this copy alone. Only copies of entries of one group share it,
   // and one thread at a time changes those (Group.h); so the number of owners is no guess.
   static EntryContent & own( std::shared_ptr< EntryContent > & copy );
   template< typename Part, typename Value > ResultCode readPart( Part part, Value & value ) const;

   GroupKind kind_;
   U32 id_;
   std::string name_;
   std::shared_ptr< EntryContent > staged_ = std::make_shared< EntryContent >();
   std::shared_ptr< EntryContent > written_;
};

}  // namespace Chip
