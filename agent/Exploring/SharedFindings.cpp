#include <Exploring/SharedFindings.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include <Exploring/Processes.h>

namespace Exploring {

struct SharedFindings::Memory {
   struct Entry {
      Kind kind{};
      U16 length = 0;  // of the text
      std::array< char, SharedFindings::kLongest > text{};
      U64 sequences = 0;
      U32 calls = 0;
      U16 events = 0;
      std::array< U16, Exploration::kLongest > shortest{};

      std::string_view what() const { return { text.data(), length }; }
      Found found() const {
         return { sequences, { shortest.begin(), shortest.begin() + events }, calls };
      }
   };

   Counts counts;
   std::size_t used = 0;
   std::array< Entry, kMost > entries;
};

SharedFindings::SharedFindings() : memory_( new ( sharedMemory( sizeof( Memory ) ) ) Memory ) {}

SharedFindings::~SharedFindings() {
   sharedMemoryGoes( memory_, sizeof( Memory ) );
}

Counts & SharedFindings::counts() {
   return memory_->counts;
}

void SharedFindings::add( Kind kind, std::string_view what, Found const & one ) {
   what = what.substr( 0, kLongest );
   auto * const end = memory_->entries.begin() + memory_->used;
   auto * const found =
      std::find_if( memory_->entries.begin(), end, [ & ]( Memory::Entry const & entry ) {
         return entry.kind == kind && entry.what() == what;
      } );
   if ( found == end && memory_->used == kMost ) {
      memory_->counts.unnamed += one.sequences;
      return;
   }
   if ( found == end ) {
      ++memory_->used;
      found->kind = kind;
      found->length = static_cast< U16 >( what.size() );
      std::copy( what.begin(), what.end(), found->text.begin() );
   }
   if ( found == end || isMoreTelling( one, found->found() ) ) {
      found->calls = one.calls;
      found->events = static_cast< U16 >( one.shortest.size() );
      std::copy( one.shortest.begin(), one.shortest.end(), found->shortest.begin() );
   }
   found->sequences += one.sequences;
}

Findings SharedFindings::findings() const {
   Findings findings;
   findings.counts = memory_->counts;
   for ( std::size_t n = 0; n < memory_->used; ++n ) {
      Memory::Entry const & entry = memory_->entries[ n ];
      findings.add( { entry.kind, std::string( entry.what() ) }, entry.found() );
   }
   return findings;
}

}  // namespace Exploring
