#include <Loading/SharedObject.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Plugin/Mounter.h>
#include <Story/InputError.h>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

namespace Loading {

namespace {

namespace fs = std::filesystem;

using Header = ElfW( Ehdr );
using Segment = ElfW( Phdr );
using DynamicEntry = ElfW( Dyn );

// A file in the executable and linkable format. It may be damaged.
class ElfFile {
 public:
   explicit ElfFile( fs::path const & file )
         : in_( file, std::ios::binary ), size_( fs::file_size( file ) ) {
      header_ = read< Header >( 0 );
   }

   bool isReadable() const { return in_.is_open(); }
   std::uintmax_t size() const { return size_; }

   // It is built for the machine of this program.
   bool isSharedObject() const {
      Header const thisProgram = ElfFile( "/proc/self/exe" ).header_.value_or( Header{} );
      return header_ && std::memcmp( header_->e_ident, thisProgram.e_ident, EI_VERSION + 1 ) == 0 &&
             header_->e_machine == thisProgram.e_machine && header_->e_type == ET_DYN;
   }

   // The size that the file needs to hold all its parts.
   std::uintmax_t neededSize() {
      std::uintmax_t needed =
         header_->e_shoff + std::uintmax_t{ header_->e_shnum } * header_->e_shentsize;
      for ( Segment const & segment : segments() ) {
         needed = std::max< std::uintmax_t >( needed, segment.p_offset + segment.p_filesz );
      }
      return std::max( needed, endOfSegments() );
   }

   // Its own list of libraries names the library.
   bool needs( std::string const & library ) {
      std::vector< DynamicEntry > const entries = dynamicEntries();
      auto const texts =
         std::find_if( entries.begin(), entries.end(),
                       []( DynamicEntry const & entry ) { return entry.d_tag == DT_STRTAB; } );
      return texts != entries.end() &&
             std::any_of( entries.begin(), entries.end(), [ & ]( DynamicEntry const & entry ) {
                return entry.d_tag == DT_NEEDED &&
                       hasText( offsetOf( texts->d_un.d_ptr + entry.d_un.d_val ), library );
             } );
   }

 private:
   template< typename T > std::optional< T > read( std::uintmax_t offset ) {
      T value{};
      in_.clear();
      in_.seekg( static_cast< std::streamoff >( offset ) );
      in_.read( reinterpret_cast< char * >( &value ), sizeof value );
      return in_ ? std::optional< T >( value ) : std::nullopt;
   }
   template< typename T > std::vector< T > readAll( std::uintmax_t offset, std::uintmax_t count ) {
      std::vector< T > values;
      for ( std::uintmax_t n = 0; n < count; ++n ) {
         if ( auto const value = read< T >( offset + n * sizeof( T ) ) ) {
            values.push_back( *value );
         } else {
            break;
         }
      }
      return values;
   }
   bool hasText( std::uintmax_t offset, std::string const & text ) {
      auto const characters = readAll< char >( offset, text.size() + 1 );
      return std::string( characters.begin(), characters.end() ) == text + '\0';
   }

   std::uintmax_t endOfSegments() const {
      return header_->e_phoff + std::uintmax_t{ header_->e_phnum } * sizeof( Segment );
   }
   std::vector< Segment > segments() {
      return readAll< Segment >( header_->e_phoff, header_->e_phnum );
   }
   std::vector< DynamicEntry > dynamicEntries() {
      for ( Segment const & segment : segments() ) {
         if ( segment.p_type == PT_DYNAMIC ) {
            return readAll< DynamicEntry >( segment.p_offset,
                                            segment.p_filesz / sizeof( DynamicEntry ) );
         }
      }
      return {};
   }
   // The place in the file of the byte that is loaded at that address.
   std::uintmax_t offsetOf( std::uintmax_t address ) {
      for ( Segment const & segment : segments() ) {
         if ( segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
              address - segment.p_vaddr < segment.p_filesz ) {
            return segment.p_offset + ( address - segment.p_vaddr );
         }
      }
      return size_;
   }

   std::ifstream in_;
   std::uintmax_t size_;
   std::optional< Header > header_;
};

// The library that registers the mounters of every plug-in.
std::string platformLibrary() {
   Dl_info info{};
   dladdr( reinterpret_cast< void * >( &Plugin::registeredMounters ), &info );
   return fs::path( info.dli_fname ).filename().string();
}

[[noreturn]] void refuse( fs::path const & file, std::string const & why ) {
   throw Story::InputError( file.string() + ' ' + why );
}

// The word in the path that dlopen() replaces, so that it would open another file; empty without
// one.
std::string_view replacedIn( std::string const & path ) {
   for ( std::string_view const word :
         { "$ORIGIN", "${ORIGIN}", "$LIB", "${LIB}", "$PLATFORM", "${PLATFORM}" } ) {
      if ( path.find( word ) != std::string::npos ) {
         return word;
      }
   }
   return {};
}

}  // namespace

void checkIsPlugin( fs::path const & file ) {
   std::error_code error;
   if ( std::string_view const word = replacedIn( fs::absolute( file, error ) ); !word.empty() ) {
      refuse( file, "has '" + std::string( word ) +
                       "' in its path, for which the loader puts another text; name the plug-in by "
                       "a path without it" );
   }
   if ( !fs::is_regular_file( file, error ) ) {
      refuse( file, "is no file; --plugin takes the plug-in's shared object" );
   }
   ElfFile elf( file );
   if ( !elf.isReadable() ) {
      refuse( file, "cannot be read; --plugin takes the plug-in's shared object" );
   }
   if ( !elf.isSharedObject() ) {
      refuse( file,
              "is no shared object of this machine; --plugin takes the plug-in's shared object" );
   }
   if ( std::uintmax_t const needed = elf.neededSize(); needed > elf.size() ) {
      refuse( file, "is cut short: it has " + std::to_string( elf.size() ) + " bytes of " +
                       std::to_string( needed ) + "; build it or copy it again" );
   }
   if ( std::string const library = platformLibrary(); !elf.needs( library ) ) {
      refuse( file, "registers no mounter, so it is no plug-in: it is not linked with " + library +
                       "; a plug-in has a Plugin::MounterRegistration for each of its mounters" );
   }
}

}  // namespace Loading
