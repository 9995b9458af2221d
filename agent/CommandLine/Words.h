// What a command takes, word by word: values and flags, each with its purpose.
//
//    value( app, "--jobs", asked_, "How many scenarios run at a time" )
//       .type( "NUMBER" )
//       .check( problemOfJobs );
//
// CLI11 parses them. It is made of templates, which take longer to compile than a whole command; so
// commands declare their words by these functions, and Words.cpp alone has the templates.
//
// A target keeps what it has until the word is given, and outlives the parsing.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <Quelm/Integers.h>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace CommandLine {

class Word {
 public:
   explicit Word( CLI::Option & option ) : option_( &option ) {}

   Word const & required() const;
   // What its value is, as the help calls it: "FILE".
   Word const & type( std::string const & name ) const;
   // Says what is wrong with a value; empty when nothing is.
   Word const & check(
      std::function< std::string( std::string const & ) > const & problemOf ) const;
   Word const & range( U32 least, U32 most ) const;
   // Takes a value each time that it is given.
   Word const & repeatable() const;
   // Takes from `least` to `most` values at once.
   Word const & count( int least, int most ) const;
   // The help tells what the target has now.
   Word const & usual() const;
   // Cannot be given together with that one, or only together with it.
   Word const & excludes( std::string const & other ) const;
   Word const & excludes( Word const & other ) const;
   Word const & needs( Word const & other ) const;

 private:
   CLI::Option * option_;
};

Word value( CLI::App & app, std::string const & name, std::string & target,
            std::string const & purpose );
Word value( CLI::App & app, std::string const & name, std::filesystem::path & target,
            std::string const & purpose );
Word value( CLI::App & app, std::string const & name, std::size_t & target,
            std::string const & purpose );
Word value( CLI::App & app, std::string const & name, std::optional< U32 > & target,
            std::string const & purpose );
Word value( CLI::App & app, std::string const & name, std::vector< std::string > & target,
            std::string const & purpose );
Word value( CLI::App & app, std::string const & name, std::vector< std::filesystem::path > & target,
            std::string const & purpose );
Word flag( CLI::App & app, std::string const & name, bool & target, std::string const & purpose );

// Refuses the value of a word, as a check of it does. For readWords().
[[noreturn]] void refuseValue( std::string const & word, std::string const & why );

}  // namespace CommandLine
