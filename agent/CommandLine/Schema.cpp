#include <CommandLine/Schema.h>

#include <Steps/Schema.h>
#include <Story/JsonForms.h>

namespace CommandLine {

Story::ExitCode Schema::perform( std::ostream & out ) {
   out << Story::documentText( Steps::schema() );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
