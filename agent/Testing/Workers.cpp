#include <Testing/Workers.h>

#include <stdexcept>

#include <Process/Workers.h>

namespace Testing {

namespace {

Result resultOf( Process::Worked const & worked ) {
   try {
      return decoded( worked.result.value_or( "" ) );
   } catch ( std::runtime_error const & ) {
      Result result;
      result.isOver = true;
      result.failures = { { "",
                            "the process that ran the scenario ended with " + worked.end +
                               ", without a result",
                            {} } };
      return result;
   }
}

}  // namespace

Tested testAll( std::vector< std::filesystem::path > const & files, std::size_t jobs,
                Work const & work, Progress const & progress ) {
   Tested tested;
   for ( auto const & file : files ) {
      tested.results.emplace_back().file = file.string();
   }
   auto const workOn = [ & ]( std::size_t piece ) { return encoded( work( files[ piece ] ) ); };
   auto const take = [ & ]( std::size_t piece, Process::Worked const & worked ) {
      Result & result = tested.results[ piece ];
      result = resultOf( worked );
      result.file = files[ piece ].string();
      result.seconds = worked.seconds;
   };
   tested.signal = Process::workAll(
      { files.size(), jobs, workOn, take, [ & ] { progress( tested.results ); } } );
   return tested;
}

}  // namespace Testing
