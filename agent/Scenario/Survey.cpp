#include <Scenario/Survey.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <Scenario/Characters.h>
#include <Scenario/Quotes.h>
#include <Scenario/ReadError.h>
#include <Text/Printable.h>

namespace Scenario {

namespace {

[[noreturn]] void refuse( std::string const & file, int line, std::string const & message ) {
   throw ReadError( { Problem{ file, line, message } } );
}

int lineAt( std::string const & text, std::size_t at ) {
   auto const end = text.begin() + static_cast< std::ptrdiff_t >( at );
   return static_cast< int >( std::count( text.begin(), end, '\n' ) ) + 1;
}

// --- Characters

// A record begins with a frame that readers of zstd skip.
void checkIsNoRecord( std::string const & text, std::string const & file ) {
   if ( text.starts_with( "\x50\x2a\x4d\x18" ) ) {
      refuse(
         file, 0,
         "this is the record of a run and no scenario; name its file to replay, show, explain, "
         "diff, verify, dump or shrink" );
   }
}

void checkCharacters( std::string const & text, std::string const & file ) {
   for ( std::size_t at = 0; at < text.size(); ) {
      std::string_view const rest = std::string_view( text ).substr( at );
      std::size_t const length = characterAt( rest );
      std::string_view const character = rest.substr( 0, std::max< std::size_t >( length, 1 ) );
      if ( length == 0 ) {
         refuse( file, lineAt( text, at ),
                 "the byte " + Text::printable( character ) +
                    " stands here, which is not UTF-8; save the file as UTF-8" );
      }
      bool const isLoneReturn = character == "\r" && !rest.starts_with( "\r\n" );
      if ( isLoneReturn || isControl( character ) ) {
         refuse( file, lineAt( text, at ),
                 "the control character " + Text::printable( character ) +
                    " stands here; remove it, or write it in double quotes, as in \"\\x1b\"" );
      }
      at += length;
   }
}

// The parser holds a whole line in memory.
void checkLines( std::string const & text, std::string const & file ) {
   for ( std::size_t at = 0; at < text.size(); ) {
      std::size_t const end = std::min( text.find( '\n', at ), text.size() );
      if ( end - at > kLongestLine ) {
         refuse( file, lineAt( text, at ), "the line is longer than 1 MiB; break it" );
      }
      at = end + 1;
   }
}

// --- Structure

// Follows the first document, and notes where the others begin.
class Surveyor final : public YAML::EventHandler {
 public:
   Surveyor( std::string const & text, std::string const & file ) : text_( text ), file_( file ) {}

   int documentLine() const { return documentLine_; }

   void OnDocumentStart( YAML::Mark const & mark ) override { documentLine_ = mark.line + 1; }
   void OnDocumentEnd() override {}
   void OnNull( YAML::Mark const & mark, YAML::anchor_t anchor ) override {
      begin( mark, anchor, false );
      end();
   }
   void OnScalar( YAML::Mark const & mark, std::string const &, YAML::anchor_t anchor,
                  std::string const & ) override {
      begin( mark, anchor, false );
      end();
      if ( auto const open = quoteOf( text_, place( mark ) ) ) {
         checkQuotes( *open );
      }
   }
   void OnAlias( YAML::Mark const & mark, YAML::anchor_t anchor ) override {
      auto const size = sizes_.find( anchor );
      if ( size == sizes_.end() ) {
         refuse( file_, mark.line + 1,
                 "this alias stands within the value that it repeats, so it has no end; write the "
                 "value out" );
      }
      count( mark, size->second );
   }
   void OnSequenceStart( YAML::Mark const & mark, std::string const &, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value style ) override {
      begin( mark, anchor, style == YAML::EmitterStyle::Flow );
   }
   void OnSequenceEnd() override { end(); }
   void OnMapStart( YAML::Mark const & mark, std::string const &, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value style ) override {
      begin( mark, anchor, style == YAML::EmitterStyle::Flow );
   }
   void OnMapEnd() override { end(); }

 private:
   struct Open {
      YAML::anchor_t anchor;
      std::size_t before;  // number of values before it
      bool hasBrackets;
   };

   std::size_t place( YAML::Mark const & mark ) const {
      return std::min( static_cast< std::size_t >( std::max( mark.pos, 0 ) ), text_.size() );
   }

   void count( YAML::Mark const & mark, std::size_t values ) {
      values_ += values;
      if ( values_ > kMost ) {
         refuse( file_, mark.line + 1,
                 "the scenario has more than " + std::to_string( kMost ) +
                    " values up to here, each repetition by an alias counted; make it smaller" );
      }
   }

   void begin( YAML::Mark const & mark, YAML::anchor_t anchor, bool hasBrackets ) {
      open_.push_back( { anchor, values_, hasBrackets } );
      brackets_ += hasBrackets ? 1 : 0;
      count( mark, 1 );
      if ( open_.size() > kDeepest ) {
         refuse( file_, mark.line + 1,
                 "more than " + std::to_string( kDeepest ) +
                    " nested lists and mappings stand here; a scenario needs ten at most, "
                    "check the brackets" );
      }
   }

   void end() {
      Open const ended = open_.back();
      open_.pop_back();
      brackets_ -= ended.hasBrackets ? 1 : 0;
      sizes_[ ended.anchor ] = values_ - ended.before;
   }

   void checkQuotes( std::size_t open ) const {
      auto const close = closingQuote( text_, open );
      if ( !close ) {
         refuse( file_, lineAt( text_, open ),
                 "the quote that begins here is never closed; close it" );
      }
      if ( text_.find( '\n', open ) > *close ) {
         return;
      }
      auto const outside = lineOutsideOf( text_, open, *close );
      if ( outside || brackets_ > 0 ) {
         std::string const last = std::to_string( lineAt( text_, *close ) );
         refuse( file_, lineAt( text_, open ),
                 "the quote that begins here is closed in line " + last +
                    " only, and all between counts as its text; close it in this line" +
                    ( brackets_ == 0 ? ", or indent the lines that belong to it deeper" : "" ) );
      }
   }

   std::string const & text_;
   std::string const & file_;
   int documentLine_ = 1;
   std::size_t values_ = 0;
   std::size_t brackets_ = 0;
   std::vector< Open > open_;
   std::map< YAML::anchor_t, std::size_t > sizes_;  // the number of values that an alias repeats
};

}  // namespace

void survey( std::string const & text, std::string const & file ) {
   checkIsNoRecord( text, file );
   checkCharacters( text, file );
   checkLines( text, file );
   Surveyor surveyor( text, file );
   try {
      // Without a last line feed the parser itself finds an open quote and names its end.
      std::istringstream in( text + '\n' );
      YAML::Parser parser( in );
      // A stray character counts as an endless document of its own, so look for two documents, not
      // all.
      if ( parser.HandleNextDocument( surveyor ) && parser.HandleNextDocument( surveyor ) ) {
         refuse( file, surveyor.documentLine(),
                 "a second document begins here; a file holds one scenario" );
      }
   } catch ( YAML::Exception const & error ) {
      // Something missing at the end is reported in the last line.
      int const last = lineAt( text, text.find_last_not_of( " \n" ) + 1 );
      refuse( file, error.mark.is_null() ? 1 : std::min( error.mark.line + 1, last ),
              "this is not YAML (" + error.msg +
                 "); check blanks, quotes and brackets here and above" );
   }
}

std::string withoutMark( std::string text ) {
   constexpr std::string_view mark = "\xef\xbb\xbf";
   if ( text.starts_with( mark ) ) {
      text.erase( 0, mark.size() );
   }
   return text;
}

}  // namespace Scenario
