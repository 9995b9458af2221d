#include <CommandLine/Manual.h>

#include <algorithm>
#include <sstream>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CommandLine/DeclaredWords.h>
#include <CommandLine/Version.h>

namespace CommandLine {

namespace {

// Text as roff takes it: a backslash and a hyphen stand for themselves, and no line begins with a
// control character.
std::string roff( std::string const & text ) {
   std::string result;
   for ( std::size_t n = 0; n < text.size(); ++n ) {
      bool const isFirst = n == 0 || text[ n - 1 ] == '\n';
      if ( isFirst && ( text[ n ] == '.' || text[ n ] == '\'' ) ) {
         result += "\\&";
      }
      switch ( text[ n ] ) {
      case '\\': result += "\\e"; break;
      case '-': result += "\\-"; break;
      case '\n': result += "\n.br\n"; break;
      default: result += text[ n ];
      }
   }
   return result;
}

std::string bold( std::string const & text ) {
   return "\\fB" + roff( text ) + "\\fR";
}

std::string italic( std::string const & text ) {
   return "\\fI" + roff( text ) + "\\fR";
}

// "[PATH]", "FILE...".
std::string usageOf( DeclaredWord const & word ) {
   std::string const text = italic( word.names.front() ) + ( word.isRepeated ? "..." : "" );
   return word.isRequired ? text : '[' + text + ']';
}

std::string usageOf( DeclaredCommand const & command ) {
   std::string text = bold( "vornal " + command.name ) + " [" + italic( "OPTION" ) + "]...";
   for ( DeclaredWord const & word : command.positionals ) {
      text += ' ' + usageOf( word );
   }
   return text;
}

// "-h, --help", "--plugin FILE".
std::string headOf( DeclaredWord const & option ) {
   std::string text;
   for ( std::string const & name : option.names ) {
      text += ( text.empty() ? "" : ", " ) + bold( name );
   }
   return text + ( option.type.empty() ? "" : ' ' + italic( option.type ) );
}

std::string item( std::string const & head, DeclaredWord const & word ) {
   return fmt::format( ".TP\n{}\n{}{}\n", head, roff( word.purpose ),
                       word.usual.empty() ? "" : "; " + roff( word.usual ) + " by default" );
}

std::string sectionOf( DeclaredCommand const & command ) {
   std::string text = fmt::format( ".SS \"{}\"\n{}\n.PP\n{}.\n", roff( command.name ),
                                   usageOf( command ), roff( command.purpose ) );
   for ( DeclaredWord const & word : command.positionals ) {
      text += item( italic( word.names.front() ), word );
   }
   for ( DeclaredWord const & option : command.options ) {
      text += item( headOf( option ), option );
   }
   text += ".PP\nExamples:\n.PP\n.nf\n.RS\n";
   for ( std::string const & line : command.examples ) {
      text += roff( line ) + '\n';
   }
   return text + ".RE\n.fi\n.PP\n" + roff( command.exitCodes ) + ".\n";
}

std::string synopsis( std::vector< DeclaredCommand > const & commands ) {
   std::string text;
   for ( DeclaredCommand const & command : commands ) {
      text += ( text.empty() ? "" : ".br\n" ) + usageOf( command ) + '\n';
   }
   return text + ".br\n" + bold( "vornal --version" ) + '\n';
}

constexpr char const * kPage = R"(.TH VORNAL 1 "" "vornal {}" "User Commands"
.SH NAME
vornal \- play scenarios of a switch around a forwarding plug\-in
.SH SYNOPSIS
{}.SH DESCRIPTION
An off\-switch agent.
It loads a forwarding plug\-in, plays the other agents of a switch from a scenario, and shows what
the plug\-in does: the rules in a software forwarding chip, and the frames that pass through it.
.SH COMMANDS
{}.SH EXIT STATUS
.TP
.B 0
All held.
.TP
.B 1
An expectation failed, or there are differences.
.TP
.B 2
Bad input or usage, or an output that is full or closed.
Standard error names the place, the mistake and the remedy.
.TP
.B 3
The plug\-in stopped the process, or a turn of it did not end.
.TP
.BR 129 ", " 130 ", " 143
A signal ended the program: SIGHUP, SIGINT, SIGTERM.
.SH ENVIRONMENT
.TP
.B NO_COLOR
Colours are not used when it is set.
.TP
.B COLUMNS
The width of tables, above that of the terminal.
.SH FILES
.TP
.I VornalEvpn.so
The plug\-in, beside the program or in
.IR ../lib/vornal/plugins ,
unless an option names another one.
.TP
.I VornalL3.json
Feature toggles, in the folder that the scenario names.
.TP
.I ../share/vornal
Scenarios and documents.
.SH SEE ALSO
.IR ../share/vornal/docs/program.md ,
.I ../share/vornal/docs/scenarios.md
and
.I ../share/vornal/docs/limits.md
describe the program, the language of the scenarios and the known limits of the plug\-in.
)";

}  // namespace

Story::ExitCode Manual::perform( std::ostream & out ) {
   auto const commands = declaredCommands();
   std::string sections;
   for ( DeclaredCommand const & command : commands ) {
      sections += sectionOf( command );
   }
   out << fmt::format( kPage, version(), synopsis( commands ), sections );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
