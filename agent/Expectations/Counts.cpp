#include <Expectations/Counts.h>

#include <fmt/format.h>

namespace Expectations {

std::string timesText( std::optional< U32 > const & times ) {
   if ( !times ) {
      return "";
   }
   return *times == 1 ? " once" : fmt::format( " {} times", *times );
}

Finding timesFound( std::ptrdiff_t found, std::optional< U32 > const & expected ) {
   bool const isAsExpected = expected ? found == std::ptrdiff_t{ *expected } : found > 0;
   return { isAsExpected,
            found == 1 ? "it is there once" : fmt::format( "it is there {} times", found ) };
}

}  // namespace Expectations
