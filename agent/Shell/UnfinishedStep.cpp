#include <Shell/UnfinishedStep.h>

#include <algorithm>

#include <Text/Words.h>

namespace Shell {

namespace {

using Text::isIn;

constexpr std::string_view kBlanksInLine = " \t";

class Reading {
 public:
   explicit Reading( std::string_view text ) : text_( text ) { open_.emplace_back(); }

   UnfinishedStep step() {
      begin_ = text_.size();
      while ( at_ < text_.size() && !open_.empty() ) {
         take();
      }
      if ( begin_ == text_.size() && !open_.empty() && !top().isFlow && isLineNew_ ) {
         toColumn( text_.size() );
      }
      return { std::move( open_ ), begin_, isQuoted_ };
   }

 private:
   OpenValue & top() { return open_.back(); }

   void take() {
      char const one = text_[ at_ ];
      if ( one == '\n' ) {
         isLineNew_ = true;
         ++at_;
      } else if ( isIn( one, kBlanksInLine ) ) {
         ++at_;
      } else if ( one == '#' && ( at_ == 0 || isIn( text_[ at_ - 1 ], " \t\n" ) ) ) {
         at_ = std::min( text_.find( '\n', at_ ), text_.size() );
      } else if ( isIn( one, "{[" ) ) {
         open_.push_back( { one == '{', true } );
         ++at_;
      } else if ( isIn( one, "}]" ) ) {
         close();
      } else if ( one == ',' && top().isFlow ) {
         top().isAtValue = false;
         ++at_;
      } else {
         takeText();
      }
   }

   void close() {
      ++at_;
      open_.pop_back();
      if ( !open_.empty() ) {
         top().isAtValue = false;
      }
   }

   void takeText() {
      std::size_t const first = at_;
      bool const isQuoted = isIn( text_[ at_ ], "'\"" );
      std::size_t const end = isQuoted ? text_.find( text_[ at_ ], at_ + 1 ) : plainEnd();
      std::size_t const from = isQuoted ? first + 1 : first;
      bool const isOpen = end == std::string_view::npos || ( !isQuoted && end == text_.size() );
      at_ = std::min( end, text_.size() ) + ( isQuoted && !isOpen ? 1 : 0 );
      bool const isKey = !isOpen && isColonAt( at_ );
      if ( isLineNew_ && !top().isFlow ) {
         toColumn( first );
      }
      isLineNew_ = false;
      if ( isOpen ) {
         begin_ = from;
         isQuoted_ = isQuoted;
         return;
      }
      std::string const text( text_.substr( from, end - from ) );
      isKey ? takeKey( text ) : takeValue( text );
   }

   // A colon at the end does not end a key yet: what is typed behind it would belong to the word.
   bool isColonAt( std::size_t at ) const {
      return at + 1 < text_.size() && text_[ at ] == ':' && isIn( text_[ at + 1 ], " \t\n,[]{}" );
   }

   // The end of a text without quotes: a line end, a colon, and within brackets a bracket or comma.
   std::size_t plainEnd() {
      bool const isFlow = top().isFlow;
      std::size_t end = at_;
      while ( end < text_.size() && text_[ end ] != '\n' && !isColonAt( end ) &&
              !( isFlow && isIn( text_[ end ], ",[]{}" ) ) ) {
         ++end;
      }
      bool const isAtEnd = end == text_.size();
      while ( !isAtEnd && end > at_ && isIn( text_[ end - 1 ], kBlanksInLine ) ) {
         --end;
      }
      return end;
   }

   void takeKey( std::string const & key ) {
      ++at_;
      top().key = key;
      top().isAtValue = true;
      top().members[ key ];
   }

   void takeValue( std::string const & text ) {
      if ( top().isMapping && top().isAtValue ) {
         top().members[ top().key ] = text;
         top().isAtValue = false;
      }
   }

   // A line of block mappings begins in the column of that place.
   void toColumn( std::size_t place ) {
      std::size_t const line = text_.substr( 0, place ).rfind( '\n' ) + 1;
      std::size_t const column = place - line;
      if ( open_.size() == 1 && top().key.empty() ) {
         top().column = column;
         return;
      }
      while ( open_.size() > 1 && !top().isFlow && column < top().column ) {
         open_.pop_back();
      }
      if ( column > top().column && top().isAtValue ) {
         open_.push_back( { true, false, column } );
      } else {
         top().isAtValue = false;
      }
   }

   std::string_view text_;
   std::size_t at_ = 0;
   std::size_t begin_ = 0;
   bool isQuoted_ = false;
   bool isLineNew_ = true;
   std::vector< OpenValue > open_;
};

}  // namespace

UnfinishedStep unfinishedStepIn( std::string_view text ) {
   return Reading( text ).step();
}

}  // namespace Shell
