#include <CommandLine/Completion.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CommandLine/DeclaredWords.h>
#include <CommandLine/Words.h>

namespace CommandLine {

namespace {

using Commands = std::vector< DeclaredCommand >;

// --- bash

// What the value can be: "file", "folder", "any", or the texts of a choice.
std::string kindOf( DeclaredWord const & word, bool isPositional ) {
   if ( !word.choices.empty() ) {
      return fmt::format( "{}", fmt::join( word.choices, " " ) );
   }
   if ( word.type == "DIR" ) {
      return "folder";
   }
   return word.type == "FILE" || isPositional ? "file" : "any";
}

std::string namesOfOptions( DeclaredCommand const & command ) {
   std::string names;
   for ( DeclaredWord const & option : command.options ) {
      names += fmt::format( "{}{}", names.empty() ? "" : " ", fmt::join( option.names, " " ) );
   }
   return names;
}

std::string bashRows( Commands const & commands ) {
   std::string rows;
   for ( DeclaredCommand const & command : commands ) {
      rows +=
         fmt::format( "   {}:options) echo '{}' ;;\n", command.name, namesOfOptions( command ) );
      for ( DeclaredWord const & option : command.options ) {
         if ( !option.type.empty() ) {
            rows += fmt::format( "   {0}:{1}) echo '{2}' ;;\n", command.name, option.names.back(),
                                 kindOf( option, false ) );
         }
      }
      for ( std::size_t n = 0; n < command.positionals.size(); ++n ) {
         DeclaredWord const & word = command.positionals[ n ];
         rows +=
            fmt::format( "   {}:{}) echo '{}' ;;\n", command.name,
                         word.isRepeated ? "[0-9]*" : std::to_string( n ), kindOf( word, true ) );
      }
   }
   return rows;
}

constexpr char const * kBash = R"(# Completion of vornal in bash, made by 'vornal completion bash'.

# What a word can be, by COMMAND and the option before it or its place.
_vornal_kind() {{
   case $1:$2 in
{}   esac
}}

# Completes a word of that kind.
_vornal_complete() {{
   local kind=$1 word=$2
   case $kind in
   file) compopt -o filenames 2> /dev/null
      mapfile -t COMPREPLY < <( compgen -f -- "$word" ) ;;
   folder) compopt -o filenames 2> /dev/null
      mapfile -t COMPREPLY < <( compgen -d -- "$word" ) ;;
   any) ;;
   *) mapfile -t COMPREPLY < <( compgen -W "$kind" -- "$word" ) ;;
   esac
}}

_vornal() {{
   local command=${{COMP_WORDS[1]}} word=${{COMP_WORDS[COMP_CWORD]}} option= place=0 kind n
   COMPREPLY=()
   if (( COMP_CWORD == 1 )); then
      _vornal_complete '{} --help --version' "$word"
      return
   fi
   # bash takes '=' as a word of its own.
   for (( n = 2; n < COMP_CWORD; ++n )); do
      case ${{COMP_WORDS[n]}} in
      =) ;;
      -?*) option=${{COMP_WORDS[n]}}
         [[ $( _vornal_kind "$command" "$option" ) ]] || option= ;;
      *) [[ $option ]] || place=$(( place + 1 ))
         option= ;;
      esac
   done
   if [[ $word == '=' ]]; then
      word=
   fi
   if [[ $option ]]; then
      kind=$( _vornal_kind "$command" "$option" )
   elif [[ $word == -* ]]; then
      kind=$( _vornal_kind "$command" options )
   else
      kind=$( _vornal_kind "$command" "$place" )
   fi
   _vornal_complete "${{kind:-any}}" "$word"
}}
complete -F _vornal vornal
)";

std::string namesOf( Commands const & commands ) {
   std::string names;
   for ( DeclaredCommand const & command : commands ) {
      names += ( names.empty() ? "" : " " ) + command.name;
   }
   return names;
}

std::string bash( Commands const & commands ) {
   return fmt::format( kBash, bashRows( commands ), namesOf( commands ) );
}

// --- zsh

// The first line of a text, for a place in single quotes and brackets.
std::string zshText( std::string const & text ) {
   std::string result;
   for ( char const c : text.substr( 0, text.find( '\n' ) ) ) {
      if ( c == '\'' ) {
         result += "'\\''";
      } else {
         result += std::string( c == '[' || c == ']' || c == ':' || c == '\\' ? "\\" : "" ) + c;
      }
   }
   return result;
}

// ":FILE:_files".
std::string zshValue( DeclaredWord const & word, bool isPositional ) {
   std::string const kind = kindOf( word, isPositional );
   std::string const action = !word.choices.empty() ? '(' + kind + ')'
                              : kind == "file"      ? "_files"
                              : kind == "folder"    ? "_files -/"
                                                    : "";
   return fmt::format( ":{}:{}", isPositional ? word.names.front() : word.type, action );
}

std::string zshOptions( DeclaredCommand const & command ) {
   std::string text;
   for ( DeclaredWord const & option : command.options ) {
      for ( std::string const & name : option.names ) {
         text += fmt::format( " \\\n         '{}{}{}[{}]{}'", option.isRepeated ? "*" : "", name,
                              option.type.empty() ? "" : "=", zshText( option.purpose ),
                              option.type.empty() ? "" : zshValue( option, false ) );
      }
   }
   return text;
}

std::string zshPositionals( DeclaredCommand const & command ) {
   std::string text;
   for ( std::size_t n = 0; n < command.positionals.size(); ++n ) {
      DeclaredWord const & word = command.positionals[ n ];
      std::string const place = word.isRepeated ? "*" : std::to_string( n + 1 );
      text += fmt::format( " \\\n         '{}{}{}'", place,
                           word.isRequired || word.isRepeated ? "" : ":", zshValue( word, true ) );
   }
   return text;
}

constexpr char const * kZsh = R"(#compdef vornal
# Completion of vornal in zsh, made by 'vornal completion zsh'.

_vornal() {{
   local -a commands
   commands=(
{}   )
   if (( CURRENT == 2 )); then
      _describe command commands
      return
   fi
   shift words
   (( CURRENT -= 1 ))
   case $words[1] in
{}   esac
}}

_vornal "$@"
)";

std::string zsh( Commands const & commands ) {
   std::string names;
   std::string cases;
   for ( DeclaredCommand const & command : commands ) {
      names += fmt::format( "      '{}:{}'\n", command.name, zshText( command.purpose ) );
      cases += fmt::format( "   {})\n      _arguments -s{}{} ;;\n", command.name,
                            zshOptions( command ), zshPositionals( command ) );
   }
   return fmt::format( kZsh, names, cases );
}

std::string problemOfShell( std::string const & text ) {
   return text == "bash" || text == "zsh" ? ""
                                          : "'" + text + "' has no completion; give bash or zsh";
}

}  // namespace

void Completion::declare( CLI::App & app ) {
   value( app, "SHELL", shell_, "The shell: bash or zsh" ).required().check( problemOfShell );
}

std::vector< std::string_view > Completion::choicesOf( std::string_view ) const {
   return { "bash", "zsh" };
}

Story::ExitCode Completion::perform( std::ostream & out ) {
   Commands const commands = declaredCommands();
   out << ( shell_ == "bash" ? bash( commands ) : zsh( commands ) );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
