#include <CommandLine/ProgressLine.h>

#include <fmt/format.h>

namespace CommandLine {

void ProgressLine::begin() {
   clear();
   next_ = now_() + kPatience;
}

void ProgressLine::advance( std::string const & text ) {
   if ( Clock::time_point const now = now_(); now >= next_ ) {
      next_ = now + kInterval;
      isDrawn_ = true;
      terminal_ << "\r   " << text << "\x1b[K" << std::flush;
   }
}

void ProgressLine::clear() {
   if ( isDrawn_ ) {
      isDrawn_ = false;
      terminal_ << "\r\x1b[K" << std::flush;
   }
}

std::string ProgressLine::bar( U64 done, U64 all ) {
   constexpr U64 kWidth = 30;
   U64 const filled = all == 0 ? kWidth : kWidth * done / all;
   return fmt::format( "[{:#<{}}{:.<{}}]", "", filled, "", kWidth - filled );
}

}  // namespace CommandLine
