// What the real VornalEvpn.so registers while it is opened, in which order. The process looks at
// the registers whenever the plug-in asks for memory, which its initialisation does at every step.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include <Kiv/Type.h>
#include <Log/Log.h>
#include <Plugin/Mounter.h>
#include <Trace/Trace.h>

#include <PlugInFile.h>

namespace {

// Whether an opening is being watched, and not from within the watching.
bool isWatching = false;
void look();

void * memory( std::size_t size ) {
   if ( isWatching ) {
      isWatching = false;
      look();
      isWatching = true;
   }
   void * const found = std::malloc( size == 0 ? 1 : size );
   if ( !found ) {
      throw std::bad_alloc();
   }
   return found;
}

}  // namespace

void * operator new( std::size_t size ) {
   return memory( size );
}
void * operator new[]( std::size_t size ) {
   return memory( size );
}
void operator delete( void * gone ) noexcept {
   std::free( gone );
}
void operator delete[]( void * gone ) noexcept {
   std::free( gone );
}
void operator delete( void * gone, std::size_t ) noexcept {
   std::free( gone );
}
void operator delete[]( void * gone, std::size_t ) noexcept {
   std::free( gone );
}

namespace {

// How many of each are registered.
struct Registered {
   std::size_t types = Kiv::types().size();
   std::size_t handles = Trace::handleNames().size();
   std::size_t logs = Log::descriptors().size();
   std::size_t mounters = Plugin::registeredMounters().size();

   friend bool operator==( Registered const &, Registered const & ) = default;
};

// Every state of the registers that has been seen, without repetitions.
std::vector< Registered > & seen() {
   static std::vector< Registered > states;
   return states;
}

void look() {
   Registered const now;
   if ( seen().empty() || !( seen().back() == now ) ) {
      seen().push_back( now );
   }
}

TEST( PlugInLoad, RegistersTypesThenTraceHandlesThenLogMessagesThenItsMounter ) {
   Registered const before;
   seen().clear();
   isWatching = true;
   void * const plugIn = dlopen( plugInFile(), RTLD_NOW | RTLD_LOCAL );
   isWatching = false;
   ASSERT_TRUE( plugIn ) << dlerror();
   look();
   Registered const after = seen().back();
   EXPECT_EQ( after.handles, before.handles + 2 );
   EXPECT_EQ( after.logs, before.logs + 4 );
   EXPECT_EQ( after.mounters, before.mounters + 1 );
   EXPECT_GT( seen().size(), 10U ) << "too few looks to tell an order";
   for ( Registered const & state : seen() ) {
      EXPECT_TRUE( state.handles == before.handles || state.types == after.types )
         << "a trace handle after " << state.types << " of " << after.types << " types";
      EXPECT_TRUE( state.logs == before.logs || state.handles == after.handles );
      EXPECT_TRUE( state.mounters == before.mounters || state.logs == after.logs );
   }
   dlclose( plugIn );
}

}  // namespace
