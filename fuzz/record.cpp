// Any bytes are read as the record of a run, up to its end or to a damage, or are refused with a
// message; each event that is read can be written and told, and a record is never another story
// than itself. For libFuzzer; fuzz/README.md has the command.
//
// No change of a block gets past the checksum of its content. Most inputs therefore come from a
// change of the content, which is packed again with the right checksum.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <zstd.h>

#include <Property.h>
#include <Record/Comparison.h>
#include <Record/Header.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>

extern "C" std::size_t LLVMFuzzerMutate( std::uint8_t * data, std::size_t size, std::size_t most );

namespace {

using Fuzz::MemoryFile;
using Fuzz::mustHold;
using Fuzz::textOf;

// --- What holds for every record

// The item has one form, which is read back.
void writeAndRead( Record::Item const & item ) {
   std::string bytes;
   Record::write( bytes, item );
   std::string_view left = bytes;
   std::string again;
   Record::write( again, Record::takeItem( left ) );
   mustHold( left.empty() && again == bytes, "an item is read back" );
}

void tell( Story::Event const & event ) {
   mustHold( !Record::wordsOf( event ).empty(), "an event has words" );
   mustHold( Story::lineText( jsonOf( event ) ).find( "\"event\":\"" ) != std::string::npos,
             "an event is a JSON object" );
}

void readAll( std::string const & path ) {
   Record::Reader reader( path );
   while ( auto const item = reader.next() ) {
      writeAndRead( *item );
      if ( auto const * const event = std::get_if< Story::Event >( &*item ) ) {
         tell( *event );
      }
   }
   mustHold( reader.cutText().starts_with( "after " ), "a cut has its place" );
}

void compareWithItself( std::string const & path ) {
   Record::Reader came( path );
   Record::Reader expected( path );
   Record::Comparison comparison( expected );
   try {
      while ( auto const event = came.nextEvent() ) {
         comparison.onEvent( *event );
      }
   } catch ( Record::Comparison::Over const & ) {
      mustHold( comparison.result() == Record::Comparison::Result::same, "a record equals itself" );
   }
}

// --- Changes within the blocks

// More would take the time of many small ones.
constexpr std::size_t kLargestBlock = 65536;

// The content of each block; nothing for bytes that are no whole record.
std::vector< std::string > blocksOf( std::string_view bytes ) {
   std::vector< std::string > blocks;
   try {
      MemoryFile const file( bytes );
      Record::FileReader reader( file.path() );
      while ( auto block = reader.next() ) {
         blocks.push_back( std::move( *block ) );
         if ( blocks.back().size() > kLargestBlock ) {
            return {};
         }
      }
   } catch ( Story::InputError const & ) {
      return {};
   }
   return blocks;
}

void change( std::string & block ) {
   constexpr std::size_t kRoom = 64;
   std::size_t const size = block.size();
   block.resize( size + kRoom );
   // libFuzzer counts in bytes without a sign.
   auto * const bytes = reinterpret_cast< std::uint8_t * >( block.data() );
   block.resize( LLVMFuzzerMutate( bytes, size, block.size() ) );
}

std::string fileOf( std::vector< std::string > const & blocks ) {
   static ZSTD_CCtx * const context = ZSTD_createCCtx();
   ZSTD_CCtx_setParameter( context, ZSTD_c_checksumFlag, 1 );
   ZSTD_CCtx_setParameter( context, ZSTD_c_windowLog, Record::kWindowLog );
   std::string bytes = Record::headerNow();
   for ( std::string const & block : blocks ) {
      std::string packed( ZSTD_compressBound( block.size() ), '\0' );
      packed.resize(
         ZSTD_compress2( context, packed.data(), packed.size(), block.data(), block.size() ) );
      bytes += packed;
   }
   return bytes;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator( std::uint8_t * data, std::size_t size,
                                                std::size_t most, unsigned seed ) {
   constexpr unsigned kOneOf = 8;
   std::vector< std::string > blocks = blocksOf( textOf( data, size ) );
   if ( seed % kOneOf == 0 || blocks.empty() ) {
      return LLVMFuzzerMutate( data, size, most );
   }
   change( blocks[ seed / kOneOf % blocks.size() ] );
   std::string const file = fileOf( blocks );
   if ( file.size() > most ) {
      return LLVMFuzzerMutate( data, size, most );
   }
   std::memcpy( data, file.data(), file.size() );
   return file.size();
}

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   MemoryFile const file( textOf( data, size ) );
   try {
      readAll( file.path() );
      compareWithItself( file.path() );
   } catch ( Story::InputError const & error ) {
      mustHold( std::string_view( error.what() ).starts_with( file.path() + ": " ),
                "a refusal names the file" );
   }
   return 0;
}
