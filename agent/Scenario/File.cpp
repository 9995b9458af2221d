#include <Scenario/File.h>

#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Scenario {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse( fs::path const & file, std::string const & message ) {
   throw ReadError( { Problem{ file.string(), 0, message } } );
}

[[noreturn]] void refuse( fs::path const & file, int error ) {
   throw ReadError( { whyUnreadable( file, error ) } );
}

class Descriptor {
 public:
   explicit Descriptor( fs::path const & file )
         : number_( open( file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC ) ) {}
   Descriptor( Descriptor const & ) = delete;
   Descriptor & operator=( Descriptor const & ) = delete;
   ~Descriptor() {
      if ( number_ >= 0 ) {
         close( number_ );
      }
   }

   int number() const { return number_; }

 private:
   int number_;
};

// Waits until there is something to read, or the end.
bool isMore( int descriptor, int milliseconds ) {
   pollfd waiting{ descriptor, POLLIN, 0 };
   return poll( &waiting, 1, milliseconds ) != 0;
}

// Reads up to the end. A named pipe also reads as ended before anybody has opened it for writing;
// `patience` is the time to wait for a writer. Other files have no patience.
class Input {
 public:
   Input( int descriptor, fs::path const & file,
          std::optional< std::chrono::milliseconds > patience )
         : descriptor_( descriptor ), file_( file ), patience_( patience ) {}

   std::string text() {
      std::string text;
      while ( takeInto( text ) ) {
         if ( text.size() > kLongest ) {
            refuse( file_,
                    "this is longer than the 16 MiB that a scenario may have; name a scenario's "
                    "file, as in scenarios/start-up/scenario.yaml" );
         }
      }
      if ( text.empty() ) {
         refuse( file_,
                 "the file is empty; a scenario is expected, as in "
                 "scenarios/start-up/scenario.yaml" );
      }
      return text;
   }

 private:
   // Appends the next bytes; false at the end.
   bool takeInto( std::string & text ) {
      ssize_t const count = read( descriptor_, chunk_.data(), chunk_.size() );
      if ( count > 0 ) {
         text.append( chunk_.data(), static_cast< std::size_t >( count ) );
         patience_.reset();
         return true;
      }
      if ( count == 0 ) {
         return std::exchange( patience_, std::nullopt ).has_value() && hasWriter();
      }
      if ( errno == EAGAIN ) {
         patience_.reset();  // a writer has opened the pipe and has written nothing yet
         return isMore( descriptor_, -1 );
      }
      if ( errno != EINTR ) {
         refuse( file_, errno );
      }
      return true;
   }

   bool hasWriter() const {
      if ( !isMore( descriptor_, static_cast< int >( given_.count() ) ) ) {
         refuse( file_,
                 "nobody writes into this pipe; write the scenario into it while the program "
                 "reads" );
      }
      return true;
   }

   static constexpr std::size_t kChunk = 65536;

   int descriptor_;
   fs::path const & file_;
   std::optional< std::chrono::milliseconds > patience_;
   std::chrono::milliseconds given_ = patience_.value_or( std::chrono::milliseconds() );
   std::array< char, kChunk > chunk_{};
};

std::string hint( fs::path const & folder ) {
   std::error_code error;
   fs::path const inside = folder / "scenario.yaml";
   return fs::is_regular_file( inside, error )
             ? "; did you mean '" + inside.string() + "'?"
             : "; name the scenario's file, as in scenarios/start-up/scenario.yaml";
}

}  // namespace

Problem whyUnreadable( fs::path const & file, int error ) {
   std::string const example = "; name a scenario's file, as in scenarios/start-up/scenario.yaml";
   switch ( error ) {
   case ENOENT: return { file.string(), 0, "there is no such file" + example };
   case ENOTDIR:
      return { file.string(), 0, "a part of this path is a file and no directory" + example };
   case EISDIR: return { file.string(), 0, "this is a directory" + hint( file ) };
   case EACCES:
   case EPERM:
      return { file.string(), 0,
               "you may not read the file; ask for the right to read it, or copy it" };
   case ELOOP:
      return { file.string(), 0, "symbolic links lead in a circle here; name the file itself" };
   default:
      return { file.string(), 0,
               "the file cannot be read (" + std::generic_category().message( error ) + ")" +
                  example };
   }
}

std::string textOf( int descriptor, fs::path const & file ) {
   return Input( descriptor, file, std::nullopt ).text();
}

std::string textIn( fs::path const & file, std::chrono::milliseconds patience ) {
   Descriptor const descriptor( file );
   struct stat about {};
   if ( descriptor.number() < 0 || fstat( descriptor.number(), &about ) != 0 ) {
      refuse( file, errno );
   }
   return S_ISFIFO( about.st_mode ) ? Input( descriptor.number(), file, patience ).text()
                                    : textOf( descriptor.number(), file );
}

}  // namespace Scenario
