// The file of a record, which zstd's own tools can read: a header, and blocks up to its end.
//
//    header    a zstd skippable frame: a mark, the version, the fingerprint (Record/Header.h)
//    block     a zstd frame with the checksum of its content: whole items (Record/Items.h)
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <Process/Descriptor.h>
#include <Quelm/Integers.h>

struct ZSTD_CCtx_s;
struct ZSTD_DCtx_s;

namespace Record {

inline constexpr std::size_t kHeaderSize = 28;

// Writes a record's file, block by block.
//
// It takes a file that is new or empty, or that holds a record; it leaves all other files
// unchanged. It empties the file with the first block; without any block, the file is as it was.
// While it exists it holds the file's lock (flock). Failures: Quelm::Error for a file that it does
// not take, and when the file cannot be written; Story::InputError as in Process/SharedFolder.h.
// The file then ends with the last whole block.
class FileWriter {
 public:
   explicit FileWriter( std::filesystem::path file );
   FileWriter( FileWriter const & ) = delete;
   FileWriter & operator=( FileWriter const & ) = delete;
   ~FileWriter();

   void add( std::string_view block );

 private:
   void open();
   void take();
   void begin();
   void append( std::string_view bytes );
   [[noreturn]] void fail() const;

   struct Free {
      void operator()( ZSTD_CCtx_s * context ) const;
   };

   std::filesystem::path file_;
   Process::Descriptor descriptor_;  // holds the lock
   bool isNew_ = false;              // the file was not there before
   std::unique_ptr< ZSTD_CCtx_s, Free > context_;
   std::string compressed_;
   U64 size_ = 0;  // of the file
};

// Reads a record's file, block by block. A damaged file costs as much memory as a block can have.
class FileReader {
 public:
   // No block is larger. Its items take some times as much memory.
   static constexpr std::size_t kLargestBlock = std::size_t{ 1 } << 26U;

   // Story::InputError when the file cannot be read, is no record, or one of another version.
   explicit FileReader( std::filesystem::path file );

   std::filesystem::path const & file() const { return file_; }
   // The next block's content; nothing at the end of the file, and at a damage.
   std::optional< std::string > next();

   // The offset of the block that was read last, or that is damaged, in the file.
   U64 offset() const { return offset_; }
   // What is wrong with the block at the offset; empty without a damage.
   std::string const & damage() const { return damage_; }

 private:
   void checkHeader();
   bool isAtLeast( std::size_t size );
   bool decompressInto( std::string & block );

   struct Free {
      void operator()( ZSTD_DCtx_s * context ) const;
   };

   std::filesystem::path file_;
   Process::Descriptor descriptor_;
   std::unique_ptr< ZSTD_DCtx_s, Free > context_;
   std::string buffer_;    // read and not yet decompressed
   std::size_t used_ = 0;  // of the buffer
   U64 offset_ = 0;
   U64 blockSize_ = 0;  // in the file
   std::string damage_;
};

// Whether the file begins as a record does.
bool isRecord( std::filesystem::path const & file );

}  // namespace Record
