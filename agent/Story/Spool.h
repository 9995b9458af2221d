// Texts that are kept on disk until they are wanted, so that a list without end fills no memory.
//
// The file stands in the folder of temporary files (TemporaryFolder.h), and has no name there: no
// other user can open it, and it goes with the process, however that ends. Failures: InputError
// when the folder takes no files, or no more, and when the disk does not give a text back.
#pragma once

#include <cstdio>
#include <memory>
#include <ostream>
#include <string_view>

namespace Story {

class Spool {
 public:
   void add( std::string_view text );
   bool isEmpty() const { return file_ == nullptr; }

   // Brings all texts to the disk. After that, writeTo() cannot fail for want of room.
   void flush() const;
   // All texts, in the order in which they were added.
   void writeTo( std::ostream & out ) const;

 private:
   struct Close {
      void operator()( std::FILE * file ) const { std::fclose( file ); }
   };
   using File = std::unique_ptr< std::FILE, Close >;

   static File fileNew();

   File file_;  // none before the first text
};

}  // namespace Story
