// The guarded field call: the only way in which a plug-in calls the field processor.
//
//    SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
//
// takes the call as it is written, so that the call's text in traces and error lines is the source
// text. For every call, in this order:
//
// 1. the shim's beforeFieldCall() runs;
// 2. the activity lock is given up, so that the agent's other threads can run while the chip is
//    programmed; an exception that passes takes it back as well;
// 3. the call is made through Shim::sdk_, and its result code kept;
// 4. the activity lock is taken back;
// 5. a negative code stops the process: one line
//
//       FILE:LINE CALL API ERROR:TEXT (CODE)
//
//    goes to standard error, whole and flushed, the shim's fieldCallFailed() runs, and the
//    assertion "0" fails at that line. Nothing that was programmed before is taken back;
// 6. any other code is success, and is traced at level 4 on the trace handle "ApiVornal" as
//    FILE:LINE CALL (rc:CODE).
//
// SDK_FIELD_CALL_AT reports the given line instead of the real one.
//
// A caller must not hold on to anything across the call that another thread of the agent can
// change.
#pragma once

#include <string>

#include <Kiv/Activity.h>
#include <Quelm/Assert.h>
#include <Shim/Shim.h>
#include <Trace/Trace.h>

namespace Shim {

// The trace handle "ApiVornal".
Trace::Handle const & apiTrace();

// The field call under way on the activity thread, for shims that record calls; nullptr
// between calls.
struct FieldCall;
extern FieldCall const * fieldCallUnderWay_;

// Where a call stands in the source, and its text. It is under way while this object lives.
struct FieldCall {
   FieldCall( Quelm::SourcePlace const & callPlace, char const * callText )
         : place( callPlace ), text( callText ) {
      fieldCallUnderWay_ = this;
   }
   FieldCall( FieldCall const & ) = delete;
   FieldCall & operator=( FieldCall const & ) = delete;
   ~FieldCall() { fieldCallUnderWay_ = nullptr; }

   Quelm::SourcePlace place;
   char const * text;
};

[[noreturn]] void fieldCallFailed( Quelm::SourcePlace const & place, char const * text, S32 rc );
void traceFieldCall( Quelm::SourcePlace const & place, char const * text, S32 rc );

template< typename Call >
void guardedFieldCall( Quelm::SourcePlace const & place, char const * text, Call const & call ) {
   S32 rc = 0;
   {
      FieldCall const underWay( place, text );
      sdk_->beforeFieldCall();
      Kiv::ActivityUnlockAnchor const unlocked;
      rc = call();
   }
   if ( rc < 0 ) [[unlikely]] {
      fieldCallFailed( place, text, rc );
   }
   if ( apiTrace().isTextEnabled( 4 ) ) [[unlikely]] {
      traceFieldCall( place, text, rc );
   }
}

// The entry's egress mask as the SDK's own macro compares it.
inline bool BCM_PBMP_EQ( _shr_pbmp const & a, _shr_pbmp const & b ) {
   return sdk_->pbmpEqual( a, b );
}

}  // namespace Shim

// NOLINTBEGIN(cppcoreguidelines-macro-usage): only a macro sees the call's text.
#define SDK_FIELD_CALL_AT( line, ... )                                                             \
   ::Shim::guardedFieldCall( QUELM_PLACE_AT( line ), #__VA_ARGS__,                                 \
                             [ & ] { return ::Shim::sdk_->__VA_ARGS__; } )

#define SDK_FIELD_CALL( ... )                                                                      \
   ::Shim::guardedFieldCall( QUELM_PLACE_AT( __LINE__ ), #__VA_ARGS__,                             \
                             [ & ] { return ::Shim::sdk_->__VA_ARGS__; } )
// NOLINTEND(cppcoreguidelines-macro-usage)
