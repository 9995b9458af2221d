#include <CommandLine/Jobs.h>

#include <CommandLine/Words.h>

#include <algorithm>
#include <thread>

#include <fmt/format.h>

#include <Text/Numbers.h>

namespace CommandLine {

namespace {

constexpr std::size_t kMostJobs = 1024;

std::string problemOfJobs( std::string const & text ) {
   auto const jobs = Text::numberIn< std::size_t >( text );
   return jobs && *jobs >= 1 && *jobs <= kMostJobs
             ? ""
             : fmt::format( "'{}' is no number of jobs; give one from 1 to {}", text, kMostJobs );
}

}  // namespace

void Jobs::declare( CLI::App & app ) {
   value( app, "--jobs", asked_,
          "How many scenarios run at a time; by default as many as there are cores" )
      .type( "NUMBER" )
      .check( problemOfJobs );
}

std::size_t Jobs::count() const {
   return asked_ != 0 ? asked_ : std::max( std::thread::hardware_concurrency(), 1U );
}

}  // namespace CommandLine
