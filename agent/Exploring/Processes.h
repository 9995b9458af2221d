// The processes in which sequences of events happen: copies of this one.
//
// The plug-in can stop such a process, so another one waits for it. What they write to standard
// error, an assertion above all, is kept in an Output that they share; their standard output is
// lost.
#pragma once

#include <chrono>
#include <functional>
#include <new>
#include <string>
#include <type_traits>

#include <Process/Descriptor.h>
#include <Process/LastWords.h>
#include <Quelm/Integers.h>

#include <sys/types.h>

namespace Exploring {

void * sharedMemory( std::size_t size );
void sharedMemoryGoes( void * memory, std::size_t size );

class Output {
 public:
   Output();

   // From now on, this process and those below it write into it.
   void redirect() const;
   void clear() const;
   std::string text() const;
   Process::LastWords lastWords() const;

 private:
   Process::Descriptor text_;
};

// Memory that this process shares with those that it forks; one of them writes at a time.
template< typename Content > class Shared {
   static_assert( std::is_trivially_destructible_v< Content > );

 public:
   // std::bad_alloc without memory.
   Shared() : content_( new ( sharedMemory( sizeof( Content ) ) ) Content{} ) {}
   Shared( Shared const & ) = delete;
   Shared & operator=( Shared const & ) = delete;
   ~Shared() { sharedMemoryGoes( content_, sizeof( Content ) ); }

   Content & operator*() const { return *content_; }
   Content * operator->() const { return content_; }

 private:
   Content * content_;
};

// The process ends by SIGALRM when this time is over; 0 takes the end back.
void timeIs( std::chrono::milliseconds time );

// A copy of this process, which ends with this one; returns as fork() does. std::system_error when
// no process can be started.
pid_t forked();
// The status of waitpid().
int waitFor( pid_t pid );
// Does the work in a process of its own, which writes into the output, and returns its status. An
// error of the work ends that process with its message, which is then all of the output.
int inProcess( Output const & output, std::function< void() > const & work );

}  // namespace Exploring
