// Completion of the program's command lines, in real shells.
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include <CommandLine/Table.h>
#include <Support.h>

namespace {

using WordSet = std::set< std::string >;

class Completion : public testing::Test {
 protected:
   Completion() {
      directory.file( "leaf.yaml", "" );
      directory.file( "two words.yaml", "" );
      std::filesystem::create_directory( directory.path() / "leaves" );
   }

   // What bash completes the last of the words to; the words are those of bash, which takes '=' as
   // one of its own.
   WordSet completed( std::vector< std::string > const & words ) const {
      std::string text = "source " + bash.string() + "\nCOMP_WORDS=( vornal";
      for ( std::string const & word : words ) {
         text += " '" + word + '\'';
      }
      text += " )\nCOMP_CWORD=" + std::to_string( words.size() ) +
              "\n_vornal\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
      return printed( "bash --norc " + directory.file( "ask", text ).string() );
   }

   WordSet printed( std::string const & command ) const {
      std::string const out = directory.path() / "out";
      std::string const line =
         "cd " + directory.path().string() + " && " + command + " > " + out + " 2>&1";
      EXPECT_NE( std::system( line.c_str() ), -1 );
      WordSet result;
      std::istringstream lines( Support::contentOf( out ) );
      for ( std::string one; std::getline( lines, one ); ) {
         if ( !one.empty() ) {
            result.insert( one );
         }
      }
      return result;
   }

   Support::Directory const directory;
   std::filesystem::path const bash =
      directory.file( "vornal.bash", Support::vornal( { "completion", "bash" } ).out );
};

TEST_F( Completion, OfTheFirstWordIsACommandOrAnOptionOfTheProgram ) {
   WordSet expected{ "--help", "--version" };
   for ( std::string_view const name : CommandLine::commandNames() ) {
      expected.insert( std::string( name ) );
   }
   EXPECT_EQ( completed( { "" } ), expected );
   EXPECT_EQ( completed( { "ver" } ), WordSet{ "verify" } );
   EXPECT_EQ( completed( { "--v" } ), WordSet{ "--version" } );
   EXPECT_EQ( completed( { "x" } ), WordSet{} );
}

TEST_F( Completion, OfAnOptionIsOneOfTheCommand ) {
   EXPECT_EQ( completed( { "run", "--t" } ), ( WordSet{ "--then", "--trace", "--turn-limit" } ) );
   EXPECT_EQ( completed( { "verify", "leaf.yaml", "--a" } ),
              ( WordSet{ "--after", "--after-each-step" } ) );
   EXPECT_EQ( completed( { "schema", "--j" } ), WordSet{} );
}

TEST_F( Completion, OfAScenarioIsAFile ) {
   EXPECT_EQ( completed( { "run", "l" } ), ( WordSet{ "leaf.yaml", "leaves" } ) );
   EXPECT_EQ( completed( { "run", "--json", "tw" } ), WordSet{ "two words.yaml" } );
   EXPECT_EQ( completed( { "check", "leaf.yaml", "tw" } ), WordSet{ "two words.yaml" } );
}

TEST_F( Completion, OfTheThingToShowIsOneOfThem ) {
   EXPECT_EQ( completed( { "show", "leaf.yaml", "v" } ), WordSet{ "vteps" } );
   EXPECT_EQ( completed( { "show", "--json", "--after", "3", "leaf.yaml", "s" } ),
              ( WordSet{ "segments", "state" } ) );
   EXPECT_EQ( completed( { "help", "sch" } ), WordSet{ "schema" } );
}

TEST_F( Completion, OfAValueFollowsItsOption ) {
   EXPECT_EQ( completed( { "run", "--pcap-out", "l" } ), WordSet{ "leaves" } );
   EXPECT_EQ( completed( { "run", "--plugin", "l" } ), ( WordSet{ "leaf.yaml", "leaves" } ) );
   EXPECT_EQ( completed( { "run", "--plugin", "=", "leaf" } ), WordSet{ "leaf.yaml" } );
   EXPECT_EQ( completed( { "run", "--pcap-out", "=" } ), WordSet{ "leaves" } );
   EXPECT_EQ( completed( { "run", "--until", "l" } ), WordSet{} );
   EXPECT_EQ( completed( { "show", "--after", "=", "3", "leaf.yaml", "tc" } ), WordSet{ "tcam" } );
}

TEST_F( Completion, IsKnownToBash ) {
   EXPECT_EQ( printed( "bash --norc -c 'source " + bash.string() + "; complete -p vornal'" ),
              WordSet{ "complete -F _vornal vornal" } );
}

TEST_F( Completion, OfAnUnknownShellIsRefused ) {
   auto const ran = Support::vornal( { "completion", "fish" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_NE( ran.err.find( "SHELL: 'fish' has no completion; give bash or zsh" ),
              std::string::npos )
      << ran.err;
}

// --- zsh

// Types each line and a Tab at a prompt of zsh, and prints the line that is there then.
constexpr char const * kAskZsh = R"zsh(
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell 'PS1= PS2= ; unsetopt beep; autoload -U compinit'
zpty -w shell 'fpath=( $PWD $fpath ); compinit -D -u'
zpty -w shell 'tell() { print -r -- "<<$BUFFER>>"; BUFFER=; }; zle -N tell; bindkey "^X" tell'
zpty -w shell 'print rea""dy'
zpty -r shell text '*ready*'
for line; do
   zpty -w -n shell "$line"$'\t\x18'
   zpty -r shell text '*<<*>>*'
   text=${text##*<<}
   print -r -- "${text%%>>*}"
done
zpty -d shell
)zsh";

TEST_F( Completion, OfEachKindOfWordWorksInZsh ) {
   directory.file( "_vornal", Support::vornal( { "completion", "zsh" } ).out );
   directory.file( "ask", kAskZsh );
   std::string const lines =
      "'vornal verif' 'vornal run --pcap' 'vornal show leaf.yaml cou' "
      "'vornal show --after 3 leaf.yaml tc' 'vornal run tw' "
      "'vornal check leaf.yaml tw' 'vornal run --pcap-out leav' "
      "'vornal help expla'";
   EXPECT_EQ( printed( "zsh -f ask " + lines ),
              ( WordSet{ "vornal verify ", "vornal run --pcap-out=",
                         "vornal show leaf.yaml counters ", "vornal show --after 3 leaf.yaml tcam ",
                         "vornal run two\\ words.yaml ", "vornal check leaf.yaml two\\ words.yaml ",
                         "vornal run --pcap-out leaves/", "vornal help explain " } ) );
}

}  // namespace
