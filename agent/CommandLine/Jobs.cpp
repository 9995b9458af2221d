#include <CommandLine/Jobs.h>

#include <algorithm>
#include <charconv>
#include <thread>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

namespace CommandLine {

namespace {

constexpr std::size_t kMostJobs = 1024;

std::string problemOfJobs( std::string const & text ) {
   std::size_t jobs = 0;
   auto const [ end, error ] = std::from_chars( text.data(), text.data() + text.size(), jobs );
   bool const isWhole = error == std::errc() && end == text.data() + text.size();
   return isWhole && jobs >= 1 && jobs <= kMostJobs
             ? ""
             : fmt::format( "'{}' is no number of jobs; give one from 1 to {}", text, kMostJobs );
}

}  // namespace

void Jobs::declare( CLI::App & app ) {
   app.add_option( "--jobs", asked_,
                   "How many scenarios run at a time; by default as many as there are cores" )
      ->type_name( "NUMBER" )
      ->check( problemOfJobs );
}

std::size_t Jobs::count() const {
   return asked_ != 0 ? asked_ : std::max( std::thread::hardware_concurrency(), 1U );
}

}  // namespace CommandLine
