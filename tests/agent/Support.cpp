#include <Support.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

namespace {

[[noreturn]] void failed( std::string const & what ) {
   throw std::system_error( errno, std::generic_category(), what );
}

// What a new process takes: the words, and nullptr behind them. They must outlive it.
std::vector< char * > pointersTo( std::vector< std::string > & words ) {
   std::vector< char * > pointers;
   for ( std::string & word : words ) {
      pointers.push_back( word.data() );
   }
   pointers.push_back( nullptr );
   return pointers;
}

}  // namespace

Directory::Directory() {
   std::string name = std::filesystem::temp_directory_path() / "test-agent-XXXXXX";
   if ( !mkdtemp( name.data() ) ) {
      failed( "mkdtemp" );
   }
   path_ = name;
}

std::string contentOf( std::filesystem::path const & file ) {
   std::ostringstream content;
   content << std::ifstream( file ).rdbuf();
   return content.str();
}

bool contains( std::string const & text, std::string const & part ) {
   return text.find( part ) != std::string::npos;
}

std::size_t timesIn( std::string const & text, std::string const & part ) {
   std::size_t times = 0;
   for ( std::size_t at = text.find( part ); at != std::string::npos;
         at = text.find( part, at + part.size() ) ) {
      ++times;
   }
   return times;
}

Ran vornal( std::vector< std::string > const & arguments,
            std::vector< std::string > const & variables ) {
   Directory const directory;
   std::filesystem::path const out = directory.path() / "out";
   std::filesystem::path const err = directory.path() / "err";
   std::string const program = VORNAL_BINARY_DIR "/vornal";
   std::vector< std::string > words{ program };
   words.insert( words.end(), arguments.begin(), arguments.end() );
   std::vector< std::string > surroundings = variables;
   for ( char * const * variable = environ; *variable; ++variable ) {
      surroundings.emplace_back( *variable );
   }

   posix_spawn_file_actions_t files;
   posix_spawn_file_actions_init( &files );
   posix_spawn_file_actions_addopen( &files, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600 );
   posix_spawn_file_actions_addopen( &files, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600 );
   pid_t pid = 0;
   errno = posix_spawn( &pid, program.c_str(), &files, nullptr, pointersTo( words ).data(),
                        pointersTo( surroundings ).data() );
   posix_spawn_file_actions_destroy( &files );
   int status = 0;
   if ( errno != 0 || waitpid( pid, &status, 0 ) < 0 ) {
      failed( program );
   }
   return { WIFEXITED( status ) ? WEXITSTATUS( status ) : -1, contentOf( out ), contentOf( err ) };
}

std::filesystem::path plugin() {
   return std::filesystem::path( VORNAL_BINARY_DIR ) / "VornalEvpn.so";
}

std::filesystem::path testPlugin( std::string const & name ) {
   return std::filesystem::path( VORNAL_BINARY_DIR ) / "test-plugins" / ( name + ".so" );
}

}  // namespace Support
