// An owned file descriptor, and operations on it.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace Process {

class Descriptor {
 public:
   Descriptor() = default;
   explicit Descriptor( int fd ) : fd_( fd ) {}
   Descriptor( Descriptor const & ) = delete;
   Descriptor( Descriptor && other ) noexcept : fd_( std::exchange( other.fd_, -1 ) ) {}
   Descriptor & operator=( Descriptor other ) noexcept {
      std::swap( fd_, other.fd_ );
      return *this;
   }
   ~Descriptor() { close(); }

   int fd() const { return fd_; }
   bool isOpen() const { return fd_ >= 0; }
   void close();

   // Writes all of `text`; false when the reader has gone.
   bool write( std::string_view text ) const;
   // Waits until something can be read, and appends it; false at the end.
   bool readInto( std::string & text ) const;

 private:
   int fd_ = -1;
};

struct Pipe {
   Descriptor out;  // to read from
   Descriptor in;   // to write to
};

// A new pipe, which programs started by this one do not inherit. Throws std::system_error.
Pipe pipeNew();

// Throws std::system_error for `errno`, with `what` in front.
[[noreturn]] void throwSystemError( std::string const & what );

}  // namespace Process
