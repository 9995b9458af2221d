// Texts that are kept on disk until they are wanted: a list without end fills no memory.
//
// The file has no name, so it goes with the process, however that ends. Failures: what cannot be
// written or read again is std::system_error.
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

   // All texts, in the order in which they were added.
   void writeTo( std::ostream & out ) const;

 private:
   struct Close {
      void operator()( std::FILE * file ) const { std::fclose( file ); }
   };
   std::unique_ptr< std::FILE, Close > file_;  // none before the first text
};

}  // namespace Story
