#include <CommandLine/Schema.h>

#include <Steps/Schema.h>

namespace CommandLine {

Story::ExitCode Schema::perform( std::ostream & out ) {
   out << Steps::schemaText();
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
