// `vornal ring`: prints the lines of a binary trace ring, also while its run goes on.
#pragma once

#include <filesystem>

#include <CommandLine/Command.h>
#include <Process/Descriptor.h>

namespace CommandLine {

class Ring final : public Command {
 public:
   void declare( CLI::App & app ) override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   Process::Descriptor opened() const;
   void print( Process::Descriptor const & file, std::ostream & out ) const;
   Story::ExitCode follow( Process::Descriptor const & file, std::ostream & out ) const;

   std::filesystem::path file_;
   bool isJson_ = false;
   bool isFollowing_ = false;
};

}  // namespace CommandLine
