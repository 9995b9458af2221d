// The file that a command writes its result into, in place of standard output: -o and --force.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace CommandLine {

class OutputFile {
 public:
   void declare( CLI::App & app );

   bool isNamed() const { return !file_.empty(); }
   std::filesystem::path const & file() const { return file_; }
   // Where the text will be: paths in it begin in that file's folder. Without a named file, it is
   // the one with this name in the current folder.
   std::filesystem::path place( std::string const & name ) const;
   // To be called before the work. Throws Story::InputError where the file must not be written.
   void check() const;
   // The same for a folder that is to come beside the file.
   void checkFolder( std::filesystem::path const & folder ) const;
   // Into the file in one go, or onto `out` where none was named.
   void write( std::string const & text, std::ostream & out ) const;

 private:
   std::filesystem::path file_;  // empty: standard output
   bool isForced_ = false;
};

// Whether there is a file, which is then one to replace. Throws Story::InputError for anything else
// of that name, and where its folder is missing.
bool isThereToReplace( std::filesystem::path const & file );

// Writes the file in one go; where it is a link, the file that it leads to.
void replaceFile( std::filesystem::path const & file, std::string const & text );

}  // namespace CommandLine
