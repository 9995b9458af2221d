// An output of the program as a stream that reports every loss.
//
//    OutputStream out( STDOUT_FILENO, "standard output" );
//    out << text;
//    out.flush();
//
// An insertion or a flush throws OutputError as soon as the output fails: a full disk, a closed
// descriptor, a reader that has gone. The destructor drops text that was inserted and not flushed,
// so flush at the end. A terminal gets every line at once.
#pragma once

#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace CommandLine {

// An output is not complete; what() names it and gives the reason.
class OutputError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

class OutputStream final : public std::ostream {
 public:
   // The caller keeps the descriptor.
   OutputStream( int fd, std::string name );

 private:
   class Buffer final : public std::streambuf {
    public:
      Buffer( int fd, std::string name );

    protected:
      int_type overflow( int_type c ) override;
      std::streamsize xsputn( char const * text, std::streamsize size ) override;
      int sync() override;

    private:
      void put( std::string_view text );
      void writeAll( std::string_view text );
      [[noreturn]] void fail( int reason ) const;

      int fd_;
      std::string name_;
      bool isTerminal_;
      std::string pending_;
   };

   Buffer buffer_;
};

}  // namespace CommandLine
