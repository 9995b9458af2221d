#include <Exploring/SharedFindings.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include <Exploring/Processes.h>

namespace Exploring {

namespace {

struct Entry {
   Kind kind{};
   U16 length = 0;  // of the text
   std::array< char, SharedFindings::kLongest > text{};
   U64 sequences = 0;
   U16 events = 0;
   std::array< U16, Exploration::kLongest > shortest{};

   std::string_view what() const { return { text.data(), length }; }
   Sequence sequence() const { return { shortest.begin(), shortest.begin() + events }; }
};

}  // namespace

struct SharedFindings::Memory {
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

void SharedFindings::add( Kind kind, std::string_view what, Sequence const & sequence,
                          U64 weight ) {
   what = what.substr( 0, kLongest );
   auto * const end = memory_->entries.begin() + memory_->used;
   auto * const found = std::find_if( memory_->entries.begin(), end, [ & ]( Entry const & entry ) {
      return entry.kind == kind && entry.what() == what;
   } );
   if ( found == end && memory_->used == kMost ) {
      memory_->counts.unnamed += weight;
      return;
   }
   if ( found == end ) {
      ++memory_->used;
      found->kind = kind;
      found->length = static_cast< U16 >( what.size() );
      std::copy( what.begin(), what.end(), found->text.begin() );
   }
   if ( found == end || isBefore( sequence, found->sequence() ) ) {
      found->events = static_cast< U16 >( sequence.size() );
      std::copy( sequence.begin(), sequence.end(), found->shortest.begin() );
   }
   found->sequences += weight;
}

Findings SharedFindings::findings() const {
   Findings findings;
   findings.counts = memory_->counts;
   for ( std::size_t n = 0; n < memory_->used; ++n ) {
      Entry const & entry = memory_->entries[ n ];
      findings.add( { entry.kind, std::string( entry.what() ) }, entry.sequence(),
                    entry.sequences );
   }
   return findings;
}

}  // namespace Exploring
