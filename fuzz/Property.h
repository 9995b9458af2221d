// What the targets share: the check of a property, and the input as text and as a file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <Process/Descriptor.h>

#include <sys/mman.h>

namespace Fuzz {

// Ends the process, which is a finding, where the property does not hold. `property` says what
// should be.
inline void mustHold( bool holds, std::string const & property ) {
   if ( !holds ) {
      std::fprintf( stderr, "does not hold: %s\n", property.c_str() );
      std::abort();
   }
}

inline std::string_view textOf( std::uint8_t const * data, std::size_t size ) {
   return { reinterpret_cast< char const * >( data ), size };
}

// A file in memory, which others can open by its path.
class MemoryFile {
 public:
   explicit MemoryFile( std::string_view bytes = {} )
         : file_( memfd_create( "fuzzed", MFD_CLOEXEC ) ) {
      mustHold( file_.isOpen() && file_.write( bytes ), "a file in memory can be written" );
   }

   static constexpr char const * kFolder = "/proc/self/fd";
   std::string name() const { return std::to_string( file_.fd() ); }
   std::string path() const { return std::string( kFolder ) + '/' + name(); }

 private:
   Process::Descriptor file_;
};

}  // namespace Fuzz
