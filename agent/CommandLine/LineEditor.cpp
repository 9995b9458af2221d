#include <CommandLine/LineEditor.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include <CommandLine/Terminal.h>

#include <fcntl.h>
#include <histedit.h>
#include <locale.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

namespace CommandLine {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kForTheOwner = 0600;

volatile sig_atomic_t isInterrupted = 0;
volatile sig_atomic_t endSignal = 0;
volatile sig_atomic_t isResized = 0;
volatile sig_atomic_t isContinued = 0;

void takeNote( int signal ) {
   switch ( signal ) {
   case SIGINT: isInterrupted = 1; break;
   case SIGWINCH: isResized = 1; break;
   case SIGCONT: isContinued = 1; break;
   default: endSignal = signal;
   }
}

// While an object exists, the editor takes and gives UTF-8, whatever the locale of the program is.
class Utf8 {
 public:
   Utf8()
         : locale_( newlocale( LC_CTYPE_MASK, "C.UTF-8", locale_t{} ) ),
           before_( locale_ ? uselocale( locale_ ) : locale_t{} ) {}
   Utf8( Utf8 const & ) = delete;
   Utf8 & operator=( Utf8 const & ) = delete;
   ~Utf8() {
      if ( locale_ ) {
         uselocale( before_ );
         freelocale( locale_ );
      }
   }

 private:
   locale_t locale_;
   locale_t before_;
};

std::string environment( char const * name ) {
   char const * const value = std::getenv( name );
   return value ? value : "";
}

int charactersIn( std::string_view text ) {
   return static_cast< int >( std::count_if( text.begin(), text.end(), []( char one ) {
      return ( static_cast< unsigned char >( one ) & 0xc0U ) != 0x80U;
   } ) );
}

std::string commonBeginning( std::vector< std::string > const & words ) {
   std::string common = words.front();
   for ( std::string const & word : words ) {
      auto const [ end, _ ] =
         std::mismatch( common.begin(), common.end(), word.begin(), word.end() );
      common.erase( end, common.end() );
   }
   return common;
}

}  // namespace

// --- Signals

class LineEditor::Signals {
 public:
   static constexpr std::array kAll{ SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGCONT };

   Signals() {
      isInterrupted = 0;
      endSignal = 0;
      isResized = 0;
      isContinued = 0;
      struct sigaction noted {};
      noted.sa_handler = &takeNote;
      noted.sa_flags = static_cast< int >( SA_RESTART );
      for ( std::size_t n = 0; n < kAll.size(); ++n ) {
         sigaction( kAll.at( n ), &noted, &before_.at( n ) );
      }
   }
   Signals( Signals const & ) = delete;
   Signals & operator=( Signals const & ) = delete;
   ~Signals() {
      for ( std::size_t n = 0; n < kAll.size(); ++n ) {
         sigaction( kAll.at( n ), &before_.at( n ), nullptr );
      }
   }

   // From here to let() they come only while the editor waits for a key.
   void hold() {
      sigset_t all;
      sigemptyset( &all );
      for ( int const number : kAll ) {
         sigaddset( &all, number );
      }
      sigprocmask( SIG_BLOCK, &all, &free_ );
   }
   void let() { sigprocmask( SIG_SETMASK, &free_, nullptr ); }

   // Waits for a key; false when a signal ends the line.
   bool awaitKey( editline * editor ) const {
      while ( true ) {
         if ( isInterrupted != 0 || endSignal != 0 ) {
            return false;
         }
         if ( isContinued != 0 ) {
            isContinued = 0;
            el_set( editor, EL_PREP_TERM, 1 );
            isResized = 1;
         }
         if ( isResized != 0 ) {
            isResized = 0;
            el_resize( editor );
            el_set( editor, EL_REFRESH );
         }
         pollfd key{ STDIN_FILENO, POLLIN, 0 };
         if ( ppoll( &key, 1, nullptr, &free_ ) > 0 ) {
            return true;
         }
      }
   }

 private:
   std::array< struct sigaction, kAll.size() > before_{};
   sigset_t free_{};
};

// --- History

fs::path historyFile() {
   fs::path const state = environment( "XDG_STATE_HOME" );
   fs::path const home = environment( "HOME" );
   if ( state.is_absolute() ) {
      return state / "vornal/history";
   }
   return home.is_absolute() ? home / ".local/state/vornal/history" : fs::path();
}

void LineEditor::loadHistory() {
   HistEvent event{};
   ::history( history_, &event, H_SETSIZE, kMostLines );
   ::history( history_, &event, H_SETUNIQUE, 1 );
   if ( file_.empty() ) {
      return;
   }
   std::error_code error;
   fs::create_directories( file_.parent_path(), error );
   int const fd = open( file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kForTheOwner );
   bool const isNew = fd >= 0 && lseek( fd, 0, SEEK_END ) == 0;
   if ( fd >= 0 ) {
      close( fd );
   }
   bool const isOurs =
      isNew || ( fd >= 0 && ::history( history_, &event, H_LOAD, file_.c_str() ) >= 0 );
   if ( !isOurs ) {
      file_.clear();
   }
}

// With each line: a process that is killed leaves the history behind.
void LineEditor::saveHistory() {
   HistEvent event{};
   if ( !file_.empty() ) {
      ::history( history_, &event, H_SAVE, file_.c_str() );
   }
}

// --- The editor

LineEditor::LineEditor( fs::path file, Complete complete )
      : file_( std::move( file ) ),
        complete_( std::move( complete ) ),
        signals_( std::make_unique< Signals >() ),
        history_( history_init() ) {
   Utf8 const utf8;
   loadHistory();
   FILE * const out = isTerminal( STDOUT_FILENO ) ? stdout : stderr;
   editor_ = el_init( "vornal", stdin, out, stderr );
   el_set( editor_, EL_CLIENTDATA, this );
   el_set( editor_, EL_PROMPT, &LineEditor::promptOf );
   el_set( editor_, EL_EDITOR, "emacs" );
   el_set( editor_, EL_SIGNAL, 0 );
   el_set( editor_, EL_HIST, &::history, history_ );
   el_set( editor_, EL_GETCFN, &LineEditor::readCharacter );
   el_set( editor_, EL_ADDFN, "vornal-complete", "Completes the word",
           static_cast< unsigned char ( * )( editline *, int ) >( &LineEditor::completeWord ) );
   el_set( editor_, EL_BIND, "^I", "vornal-complete", nullptr );
   el_set( editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr );
   el_source( editor_, nullptr );
}

LineEditor::~LineEditor() {
   el_end( editor_ );
   history_end( history_ );
}

LineEditor::Line LineEditor::read( std::string const & prompt ) {
   Utf8 const utf8;
   prompt_ = prompt;
   isInterrupted = 0;
   signals_->hold();
   // The editor would switch only behind the prompt, and a Ctrl-D in between would be lost.
   el_set( editor_, EL_PREP_TERM, 1 );
   int count = 0;
   char const * const typed = el_gets( editor_, &count );
   signals_->let();
   if ( endSignal != 0 ) {
      return { Line::Kind::end, "", endSignal };
   }
   if ( isInterrupted != 0 ) {
      return { Line::Kind::interrupted };
   }
   if ( !typed || count <= 0 ) {
      return {};
   }
   std::string text( typed, static_cast< std::size_t >( count ) );
   text.erase( text.find_last_not_of( '\n' ) + 1 );
   if ( text.find_first_not_of( " \t" ) != std::string::npos ) {
      HistEvent event{};
      ::history( history_, &event, H_ENTER, text.c_str() );
      saveHistory();
   }
   return { Line::Kind::text, text };
}

// --- What the library calls; no exception may pass through it

namespace {

LineEditor & editorOf( editline * editor ) {
   void * data = nullptr;
   el_get( editor, EL_CLIENTDATA, &data );
   return *static_cast< LineEditor * >( data );
}

}  // namespace

char * LineEditor::promptOf( editline * editor ) {
   return editorOf( editor ).prompt_.data();
}

// The result is that of read(): 1, 0 at the end, -1 after a failure.
int LineEditor::readCharacter( editline * editor, wchar_t * character ) {
   std::mbstate_t state{};
   while ( editorOf( editor ).signals_->awaitKey( editor ) ) {
      char byte = 0;
      ssize_t const count = ::read( STDIN_FILENO, &byte, 1 );
      if ( count <= 0 ) {
         return static_cast< int >( count );
      }
      std::size_t const length = std::mbrtowc( character, &byte, 1, &state );
      if ( length <= 1 ) {
         return 1;
      }
      if ( length == static_cast< std::size_t >( -1 ) ) {
         state = {};  // no UTF-8; the next byte begins a character
      }
   }
   return -1;
}

unsigned char LineEditor::completeWord( editline * editor, int ) {
   try {
      return editorOf( editor ).completeWord();
   } catch ( ... ) {  // without an answer, nothing is completed
      return CC_ERROR;
   }
}

unsigned char LineEditor::completeWord() {
   LineInfo const * const line = el_line( editor_ );
   std::string const text( line->buffer, line->cursor );
   Candidates const candidates = complete_( text );
   if ( candidates.words.empty() || candidates.begin > text.size() ) {
      return CC_ERROR;
   }
   std::string const common = commonBeginning( candidates.words );
   std::string const begun = text.substr( candidates.begin );
   if ( common.size() > begun.size() || candidates.words.size() == 1 ) {
      el_deletestr( editor_, charactersIn( begun ) );
      el_insertstr( editor_, common.c_str() );
      return CC_REFRESH;
   }
   list( candidates.words );
   return CC_REDISPLAY;
}

void LineEditor::list( std::vector< std::string > const & words ) {
   constexpr std::size_t kUsualWidth = 80;
   std::size_t widest = 0;
   for ( std::string const & word : words ) {
      widest = std::max( widest, word.size() + 2 );
   }
   FILE * const out = isTerminal( STDOUT_FILENO ) ? stdout : stderr;
   std::size_t const width = std::min( widthOf( fileno( out ) ), 4 * kUsualWidth );
   std::size_t const columns = std::max< std::size_t >( width / widest, 1 );
   for ( std::size_t n = 0; n < words.size(); ++n ) {
      std::fprintf( out, "%s%-*s", n % columns == 0 ? "\n" : "", static_cast< int >( widest ),
                    words[ n ].c_str() );
   }
   std::fprintf( out, "\n" );
   std::fflush( out );
}

}  // namespace CommandLine
