#include <CommandLine/DeclaredWords.h>

#include <algorithm>
#include <sstream>

#include <CLI/CLI.hpp>

namespace CommandLine {

namespace {

DeclaredWord wordOf( CLI::Option const & option, Command const & command ) {
   DeclaredWord word;
   for ( std::string const & name : option.get_snames() ) {
      word.names.push_back( "-" + name );
   }
   for ( std::string const & name : option.get_lnames() ) {
      word.names.push_back( "--" + name );
   }
   bool const isPositional = option.get_positional();
   if ( isPositional ) {
      word.names = { option.get_name() };
   }
   word.type = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
   word.purpose = option.get_description();
   word.usual = option.get_default_str();
   word.isRequired = option.get_required();
   word.isRepeated = isPositional
                        ? option.get_items_expected_max() > 1
                        : option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
   auto const choices = command.choicesOf( word.names.back() );
   word.choices.assign( choices.begin(), choices.end() );
   return word;
}

DeclaredCommand commandOf( CLI::App const & app, Row const & row, Command const & command ) {
   DeclaredCommand result{ std::string( row.name ), std::string( row.purpose ), {}, {}, {}, {} };
   for ( CLI::Option const * const option : app.get_options() ) {
      auto & words = option->get_positional() ? result.positionals : result.options;
      words.push_back( wordOf( *option, command ) );
   }
   std::istringstream lines{ std::string( row.examples ) };
   for ( std::string line; std::getline( lines, line ); ) {
      result.examples.push_back( line );
   }
   result.exitCodes = row.exitCodes;
   return result;
}

}  // namespace

std::vector< DeclaredCommand > declaredCommands() {
   Declared declared;
   std::vector< DeclaredCommand > result;
   for ( std::size_t n = 0; n < table().size(); ++n ) {
      Row const & row = table()[ n ];
      if ( !row.isHidden ) {
         result.push_back( commandOf( *declared.app().get_subcommand( std::string( row.name ) ),
                                      row, *declared.commands()[ n ] ) );
      }
   }
   return result;
}

}  // namespace CommandLine
