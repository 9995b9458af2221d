// Completes what is typed in a conversation: commands and their options, the words of steps, and
// the names that exist on the switch now.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <CommandLine/LineEditor.h>
#include <CommandLine/LiveNames.h>

namespace CommandLine {

class ShellCompletion {
 public:
   // The conversation must outlive it.
   explicit ShellCompletion( Conversation const & conversation )
         : conversation_( conversation ), names_( conversation ) {}

   // The completions of a line up to the cursor. `before` holds the lines before it that belong to
   // the same step.
   Candidates of( std::string const & before, std::string_view line );

 private:
   Candidates ofStep( std::string_view step );
   Candidates ofCommand( std::string_view line );
   std::vector< std::string > valuesOf( std::string const & option );
   std::vector< std::string > namesFor( std::string const & command,
                                        std::vector< std::string > const & words,
                                        std::string const & begun );
   std::vector< std::string > optionsOf( std::string const & command ) const;
   std::vector< std::string > interfaces();
   std::vector< std::string > numbers( std::size_t last ) const;

   Conversation const & conversation_;
   LiveNames names_;
};

}  // namespace CommandLine
