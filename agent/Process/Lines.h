// Splits the text from a pipe into lines.
#pragma once

#include <string>

#include <Process/Descriptor.h>

namespace Process {

// Keeps at most one line in memory. A line longer than `longest` bytes is handed on in pieces of
// that length. Takes time in proportion to the text.
class Lines {
 public:
   Lines( Descriptor pipe, std::size_t longest )
         : pipe_( std::move( pipe ) ), longest_( longest ) {}

   Descriptor const & pipe() const { return pipe_; }

   // Reads the available text and hands every complete line to `take`, without its line end.
   template< typename Take > void read( Take const & take ) {
      std::size_t begin = 0;
      std::size_t const searched = text_.size();
      bool const isAtEnd = !pipe_.readInto( text_ );
      for ( std::size_t end = text_.find( '\n', searched ); end != std::string::npos;
            end = text_.find( '\n', begin ) ) {
         take( text_.substr( begin, end - begin ) );
         begin = end + 1;
      }
      text_.erase( 0, begin );
      if ( isAtEnd ) {
         pipe_.close();
      }
      if ( text_.size() >= longest_ ) {
         take( text_ );
         text_.clear();
      }
   }

   // The text after the last line end.
   std::string const & rest() const { return text_; }

 private:
   Descriptor pipe_;
   std::size_t longest_;
   std::string text_;  // the beginning of an unfinished line
};

}  // namespace Process
