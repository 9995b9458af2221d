#include <Exploring/CallLog.h>

#include <Story/Binary.h>
#include <Story/ChipFields.h>
#include <Story/EventForms.h>

#include <sys/mman.h>
#include <unistd.h>

namespace Exploring {

using namespace Story::Binary;

CallLog::CallLog() : bytes_( memfd_create( "calls", MFD_CLOEXEC ) ) {
   if ( !bytes_.isOpen() ) {
      Process::throwSystemError( "cannot keep the calls of a run" );
   }
}

void CallLog::add( LoggedCall const & logged ) const {
   std::string bytes;
   Out out( bytes );
   write( out, logged.steps );
   write( out, logged.call );
   if ( !bytes_.write( bytes ) ) {
      Process::throwSystemError( "cannot keep a call" );
   }
}

std::vector< LoggedCall > CallLog::calls() const {
   std::string bytes;
   lseek( bytes_.fd(), 0, SEEK_SET );
   while ( bytes_.readInto( bytes ) ) {
   }
   std::vector< LoggedCall > calls;
   In in( bytes );
   while ( !in.isAtEnd() ) {
      calls.push_back( { read< U32 >( in ), read< Chip::HardwareCall >( in ) } );
   }
   return calls;
}

}  // namespace Exploring
