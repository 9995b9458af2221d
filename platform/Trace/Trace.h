// Leveled tracing.
//
// A plug-in traces through handles. A handle has a name and ten levels, 0 to 9, each of which can
// be on or off; a line at a level that is off costs one test and formats nothing:
//
//    TRACE( handle, 5, "ifpTcamEntries" << ", unit: " << unit );
//    TRACE_RING( handle, 5, "handleTepSegment" << " tepIp: " << tepIp );
//
// The levels: 2 failures and skipped work, 3 mask details, 4 entry ids and SDK successes,
// 5 entry into an operation, 6 and 7 per-unit and per-port detail, 8 handler signatures,
// 9 verification. Level 0 is for an event that happens once.
//
// TRACE writes a text line. TRACE_RING writes it to the binary ring (Trace/Ring.h) as well; the
// ring has level switches of its own, so that the last lines survive a stop when the text trace was
// off.
//
// Switching: levelsIs( "VornalEvpn*", "0-5" ) sets the text levels of every handle whose name
// matches, those made later included; ringLevelsIs does the same for the ring. Both start with
// every level off, except level 0 in the text trace and levels 0 to 5 in the ring.
//
// Sinks belong to the agent: sinkIs() takes the text lines, ringIs() the ring. Without a sink the
// lines go to standard error. Lines are made by holders of the activity lock only.
#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <Quelm/Integers.h>

namespace Trace {

class Ring;

// Where ring lines go from now on; nullptr for nowhere. The ring must outlive its use.
void ringIs( Ring * ring );

// One traced line.
struct Line {
   std::string_view handle;
   int level;
   std::string_view text;
};

class Handle {
 public:
   explicit Handle( std::string name );
   Handle( Handle const & ) = delete;
   Handle & operator=( Handle const & ) = delete;
   ~Handle();

   std::string const & name() const { return name_; }

   bool isTextEnabled( int level ) const { return ( textLevels_ >> level & 1U ) != 0; }
   bool isRingEnabled( int level ) const { return ( ringLevels_ >> level & 1U ) != 0; }
   // Whether a line of that level goes anywhere.
   bool isEnabled( int level ) const {
      return isTextEnabled( level ) || ( hasRing_ && isRingEnabled( level ) );
   }

   // Bit n is level n.
   void textLevelsIs( U32 levels ) { textLevels_ = levels; }
   void ringLevelsIs( U32 levels ) { ringLevels_ = levels; }

   void line( int level, std::string const & text ) const;
   void ringLine( int level, std::string const & text ) const;

 private:
   std::string name_;
   U32 textLevels_ = 0;
   U32 ringLevels_ = 0;
   static bool hasRing_;

   friend void ringIs( Ring * ring );
};

using Sink = std::function< void( Line const & ) >;

// Where text lines go from now on; an empty sink means standard error.
void sinkIs( Sink sink );

// The levels that `text` lists, bit n for level n: digits and ranges ("0-5,9"), or nothing for
// none. Any other text throws Quelm::TextError.
U32 levelsFromText( std::string_view text );

// Sets the levels of every handle, present and future, whose name matches `names`: a name, or the
// beginning of one followed by '*'. `levels` as levelsFromText() takes them. What it refuses
// changes nothing. Later settings win.
void levelsIs( std::string const & names, std::string_view levels );
void ringLevelsIs( std::string const & names, std::string_view levels );

// The names of the handles that there are, in the order of their making.
std::vector< std::string > handleNames();

}  // namespace Trace

// NOLINTBEGIN(*-macro-usage, *-macro-parentheses): `expression` stays unevaluated, and has `<<`.
#define TRACE( handle, level, expression )                                                         \
   do {                                                                                            \
      if ( ( handle ).isTextEnabled( level ) ) [[unlikely]] {                                      \
         ( handle ).line( level, ( std::ostringstream() << expression ).str() );                   \
      }                                                                                            \
   } while ( false )

#define TRACE_RING( handle, level, expression )                                                    \
   do {                                                                                            \
      if ( ( handle ).isEnabled( level ) ) [[unlikely]] {                                          \
         ( handle ).ringLine( level, ( std::ostringstream() << expression ).str() );               \
      }                                                                                            \
   } while ( false )
// NOLINTEND(*-macro-usage, *-macro-parentheses)
