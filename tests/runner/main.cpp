// The main() of every test program. It is GoogleTest's own, and
//
//    test-agent --tests-of agent/Codec_test.cpp [--seconds 60]
//
// runs the tests of one source file, each in a process of its own: a copy of this one, made before
// any test has run. That is as good as starting the program anew for each test, and far cheaper.
//
// What a test prints is shown when it fails. A test that takes longer than the seconds given has
// failed. The exit code is 0 when all tests of the file have passed, 1 when one has not, and 2 when
// there is none, or a test stands in a file where this would not find it.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::string_view kFileEnd = "_test.cpp";
// The exit code of a process whose test has passed: none that a test would end it with.
constexpr int kPassed = 119;

// --- What to run

struct Orders {
   std::string file;
   unsigned seconds = 0;  // 0: as long as it takes
};

// The value of a word such as `--seconds`, if it is there.
std::optional< std::string > valueOf( std::string_view word, int argc, char ** argv ) {
   for ( int n = 1; n + 1 < argc; ++n ) {
      if ( argv[ n ] == word ) {
         return argv[ n + 1 ];
      }
   }
   return std::nullopt;
}

// A death test in the style "threadsafe" starts the program again, with the words that it was
// started with and one of GoogleTest's own. That process is the death test, and runs no other
// tests.
bool isDeathTest( int argc, char ** argv ) {
   return std::any_of( argv, argv + argc, []( std::string_view word ) {
      return word.starts_with( "--gtest_internal_run_death_test=" );
   } );
}

std::optional< Orders > ordersIn( int argc, char ** argv ) {
   auto const file = valueOf( "--tests-of", argc, argv );
   if ( !file || isDeathTest( argc, argv ) ) {
      return std::nullopt;
   }
   auto const seconds = valueOf( "--seconds", argc, argv );
   return Orders{ *file, seconds ? static_cast< unsigned >( std::stoul( *seconds ) ) : 0 };
}

std::vector< testing::TestInfo const * > allTests() {
   std::vector< testing::TestInfo const * > tests;
   testing::UnitTest const & all = *testing::UnitTest::GetInstance();
   for ( int suite = 0; suite < all.total_test_suite_count(); ++suite ) {
      testing::TestSuite const & one = *all.GetTestSuite( suite );
      for ( int test = 0; test < one.total_test_count(); ++test ) {
         tests.push_back( one.GetTestInfo( test ) );
      }
   }
   return tests;
}

std::string nameOf( testing::TestInfo const & test ) {
   return std::string( test.test_suite_name() ) + "." + test.name();
}

bool isIn( testing::TestInfo const & test, std::string const & file ) {
   return std::string_view( test.file() ).ends_with( "/" + file );
}

// --- One test

using File =
   std::unique_ptr< std::FILE, decltype( []( std::FILE * file ) { std::fclose( file ); } ) >;

[[noreturn]] void failed( char const * what ) {
   throw std::system_error( errno, std::generic_category(), what );
}

// In the copy: runs the test and ends.
[[noreturn]] void beTest( testing::TestInfo const & test, unsigned seconds, std::FILE * output ) {
   prctl( PR_SET_PDEATHSIG, SIGKILL );
   alarm( seconds );
   dup2( fileno( output ), STDOUT_FILENO );
   dup2( fileno( output ), STDERR_FILENO );
   GTEST_FLAG_SET( filter, nameOf( test ) );
   bool const isPassed =
      RUN_ALL_TESTS() == 0 && testing::UnitTest::GetInstance()->test_to_run_count() == 1;
   std::exit( isPassed ? kPassed : EXIT_FAILURE );
}

void show( std::FILE * output ) {
   std::rewind( output );
   std::array< char, 65536 > part;
   for ( std::size_t size = 1; size > 0; ) {
      size = std::fread( part.data(), 1, part.size(), output );
      std::cout.write( part.data(), static_cast< std::streamsize >( size ) );
   }
}

std::string endOf( int status ) {
   if ( !WIFSIGNALED( status ) ) {
      return "exit code " + std::to_string( WEXITSTATUS( status ) );
   }
   return WTERMSIG( status ) == SIGALRM ? "it took too long" : strsignal( WTERMSIG( status ) );
}

bool passes( testing::TestInfo const & test, unsigned seconds ) {
   File const output( std::tmpfile() );
   if ( !output ) {
      failed( "cannot make a file for what a test prints" );
   }
   std::cout.flush();
   pid_t const pid = fork();
   if ( pid < 0 ) {
      failed( "cannot start a process for a test" );
   }
   if ( pid == 0 ) {
      beTest( test, seconds, output.get() );
   }
   int status = 0;
   while ( waitpid( pid, &status, 0 ) < 0 && errno == EINTR ) {
   }
   bool const isPassed = WIFEXITED( status ) && WEXITSTATUS( status ) == kPassed;
   if ( !isPassed ) {
      show( output.get() );
      std::cout << "FAILED: " << nameOf( test ) << ": " << endOf( status ) << "\n\n";
   }
   return isPassed;
}

// --- All tests of a file

bool allStandWhereTheyAreFound( std::vector< testing::TestInfo const * > const & tests ) {
   bool all = true;
   for ( testing::TestInfo const * const test : tests ) {
      if ( !std::string_view( test->file() ).ends_with( kFileEnd ) ) {
         std::cout << nameOf( *test ) << " stands in " << test->file()
                   << "; a test stands in a file whose name ends in " << kFileEnd << '\n';
         all = false;
      }
   }
   return all;
}

int run( Orders const & orders ) {
   auto tests = allTests();
   if ( !allStandWhereTheyAreFound( tests ) ) {
      return 2;
   }
   std::erase_if( tests, [ & ]( auto const * test ) { return !isIn( *test, orders.file ); } );
   if ( tests.empty() ) {
      std::cout << orders.file << " holds no test of this program\n";
      return 2;
   }
   auto const passed = std::count_if( tests.begin(), tests.end(), [ & ]( auto const * test ) {
      return passes( *test, orders.seconds );
   } );
   std::cout << passed << " of " << tests.size() << " tests of " << orders.file << " passed\n";
   return passed == std::ssize( tests ) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main( int argc, char ** argv ) {
   try {
      auto const orders = ordersIn( argc, argv );
      testing::InitGoogleTest( &argc, argv );
      return orders ? run( *orders ) : RUN_ALL_TESTS();
   } catch ( std::exception const & error ) {
      std::cerr << argv[ 0 ] << ": " << error.what() << '\n';
      return 2;
   }
}
