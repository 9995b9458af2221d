#include <CommandLine/Check.h>

#include <algorithm>
#include <iterator>
#include <set>

#include <CommandLine/NamedFiles.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Steps/Reader.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Testing/Collection.h>
#include <Text/Printable.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct Checked {
   std::string file;
   std::vector< Scenario::Problem > problems;  // in the order of their lines
   std::vector< std::string > leftOut;
};

// Mistakes of the file come first, those of files that it names come last.
Checked checked( fs::path const & file ) {
   Scenario::Findings findings = Steps::examineScenario( file );
   Checked result{ file == "-" ? "standard input" : file.string(), std::move( findings.problems ),
                   std::move( findings.leftOut ) };
   if ( !findings.model.file.empty() ) {
      auto const more = problemsOfNamedFiles( findings.model );
      result.problems.insert( result.problems.end(), more.begin(), more.end() );
   }
   auto const isOfFile = [ & ]( Scenario::Problem const & one ) { return one.file == result.file; };
   auto const others =
      std::stable_partition( result.problems.begin(), result.problems.end(), isOfFile );
   std::stable_sort( result.problems.begin(), others,
                     []( auto const & a, auto const & b ) { return a.line < b.line; } );
   return result;
}

// The scenarios below a folder; one mistake when there is none.
std::vector< Checked > checkedBelow( fs::path const & folder ) {
   std::vector< Checked > all;
   std::string const name = folder.string();
   try {
      for ( fs::path const & file : Testing::scenariosAmong( { folder } ) ) {
         all.push_back( checked( file ) );
      }
   } catch ( Story::InputError const & ) {
      std::string const unread = "this folder cannot be read to its end; give one that can";
      return { { name, { { name, 0, unread } }, {} } };
   }
   std::string const none = "this folder holds no scenario; name one with some";
   return all.empty() ? std::vector{ Checked{ name, { { name, 0, none } }, {} } } : all;
}

std::size_t mistakesIn( std::vector< Checked > const & all ) {
   std::size_t mistakes = 0;
   for ( Checked const & one : all ) {
      mistakes += one.problems.size();
   }
   return mistakes;
}

void print( std::vector< Checked > const & all, std::ostream & out ) {
   for ( Checked const & one : all ) {
      for ( Scenario::Problem const & problem : one.problems ) {
         out << problem.text() << '\n';
      }
      if ( !one.leftOut.empty() ) {
         out << Text::printable( one.file ) << ": not checked because of these mistakes: ";
         for ( std::size_t n = 0; n < one.leftOut.size(); ++n ) {
            out << ( n == 0 ? "" : "; " ) << one.leftOut[ n ];
         }
         out << '\n';
      }
   }
   std::size_t const mistakes = mistakesIn( all );
   out << ( mistakes == 0 ? "no mistakes" : Story::counted( mistakes, "mistake" ) ) << " in "
       << Story::counted( all.size(), "scenario" ) << '\n';
}

void printJson( std::vector< Checked > const & all, std::ostream & out ) {
   Json files = Json::array();
   for ( Checked const & one : all ) {
      Json mistakes = Json::array();
      for ( Scenario::Problem const & problem : one.problems ) {
         mistakes.push_back( { { "file", problem.file },
                               { "line", problem.line == 0 ? Json() : Json( problem.line ) },
                               { "text", problem.message } } );
      }
      files.push_back(
         { { "file", one.file }, { "mistakes", mistakes }, { "notChecked", one.leftOut } } );
   }
   out << Story::documentText( Json{ { "scenarios", files } } );
}

}  // namespace

void Check::declare( CLI::App & app ) {
   value( app, "FILE", files_, "The scenarios: files, folders of them, or '-' for standard input" )
      .required()
      .type( "FILE" )
      .check( problemOfName );
   flag( app, "--json", isJson_, "Print one JSON document instead of text" );
}

Story::ExitCode Check::perform( std::ostream & out ) {
   std::vector< Checked > all;
   std::set< fs::path > seen;
   for ( fs::path const & named : files_ ) {
      std::error_code error;
      auto const more =
         fs::is_directory( named, error ) ? checkedBelow( named ) : std::vector{ checked( named ) };
      std::copy_if( more.begin(), more.end(), std::back_inserter( all ),
                    [ & ]( Checked const & one ) {
                       return seen.insert( fs::weakly_canonical( one.file, error ) ).second;
                    } );
   }
   isJson_ ? printJson( all, out ) : print( all, out );
   return mistakesIn( all ) == 0 ? Story::ExitCode::Held : Story::ExitCode::BadInput;
}

}  // namespace CommandLine
