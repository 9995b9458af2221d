// Assertions that are never compiled out.
//
// A forwarding agent whose bookkeeping contradicts itself must not go on programming a chip: it
// stops, and the expression that failed says why. The text of the expression is the source text,
// so the two cannot drift apart; a message goes in as `condition && "message"`.
//
// A failed assertion writes one line to standard error and raises SIGABRT:
//
//    FILE:LINE: FUNCTION: Assertion 'EXPRESSION' failed.
//
// FILE is the base name of the source file. QUELM_ASSERT_AT reports a given line instead of the
// real one, for call sites whose line numbers support tools look for.
#pragma once

namespace Quelm {

struct SourcePlace {
   char const * file;      // base name
   int line;               // 1-based
   char const * function;  // full signature
};

[[noreturn]] void assertionFailed( SourcePlace const & place, char const * expression );

}  // namespace Quelm

#define QUELM_PLACE_AT( line ) ( ::Quelm::SourcePlace{ __FILE_NAME__, line, __PRETTY_FUNCTION__ } )

// NOLINTBEGIN(cppcoreguidelines-macro-usage): only a macro sees the expression's text.
#define QUELM_ASSERT_AT( line, ... )                                                               \
   ( static_cast< bool >( __VA_ARGS__ )                                                            \
        ? static_cast< void >( 0 )                                                                 \
        : ::Quelm::assertionFailed( QUELM_PLACE_AT( line ), #__VA_ARGS__ ) )

#define QUELM_ASSERT( ... )                                                                        \
   ( static_cast< bool >( __VA_ARGS__ )                                                            \
        ? static_cast< void >( 0 )                                                                 \
        : ::Quelm::assertionFailed( QUELM_PLACE_AT( __LINE__ ), #__VA_ARGS__ ) )
// NOLINTEND(cppcoreguidelines-macro-usage)
