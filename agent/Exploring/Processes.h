// The processes in which sequences of events happen: copies of this one.
//
// The plug-in can stop such a process, so another one waits for it. What they write to standard
// error, an assertion above all, is kept in an Output that they share; their standard output is
// lost.
#pragma once

#include <functional>

#include <Process/Descriptor.h>
#include <Process/LastWords.h>
#include <Quelm/Integers.h>

#include <sys/types.h>

namespace Exploring {

inline constexpr U32 kRingLines = 64;  // of a trace ring that nobody reads

class Output {
 public:
   Output();

   // From now on, this process and those below it write into it.
   void redirect() const;
   void clear() const;
   Process::LastWords lastWords() const;

 private:
   Process::Descriptor text_;
};

// A copy of this process, which ends with this one; returns as fork() does. std::system_error when
// no process can be started.
pid_t forked();
// The status of waitpid().
int waitFor( pid_t pid );
// Does the work in a process of its own, which writes into the output, and returns its status. An
// error of the work ends that process with its message.
int inProcess( Output const & output, std::function< void() > const & work );

}  // namespace Exploring
