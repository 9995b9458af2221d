// The switch log: messages that an operator sees.
//
// A message is described once, by a descriptor that is registered when its module is loaded: name,
// format, explanation, recommended action, severity. Logging it writes
//
//    %VORNAL-SEVERITY-NAME: TEXT
//
// with TEXT the format after its "%s" have been replaced by the arguments. The sink belongs to the
// agent; without one, lines go to standard error.
//
// Descriptors live as long as the handles that registered them.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <Quelm/Integers.h>

namespace Log {

// Syslog numbering (RFC 5424, section 6.2.1).
enum class Severity : U8 {
   Emergency = 0,
   Alert = 1,
   Critical = 2,
   Error = 3,
   Warning = 4,
   Notice = 5,
   Informational = 6,
   Debug = 7,
};

// One of the recommended actions that the log facility words itself.
enum class StandardAction : U8 {
   NoneRequired = 1,
   ContactSupport = 2,
};

struct Descriptor {
   std::string name;
   std::string format;
   std::string explanation;
   std::variant< std::string, StandardAction > action;
   Severity severity;
};

// One message that was logged.
struct Message {
   Descriptor const & descriptor;
   std::string line;  // "%VORNAL-SEVERITY-NAME: TEXT"
};

class Handle {
 public:
   explicit Handle( Descriptor descriptor );
   Handle( Handle const & ) = delete;
   Handle & operator=( Handle const & ) = delete;
   ~Handle();

   Descriptor const & descriptor() const { return descriptor_; }

   // Logs the message. One argument for every "%s" of the format.
   void log( std::initializer_list< std::string_view > arguments = {} ) const;

 private:
   Descriptor descriptor_;
};

using Sink = std::function< void( Message const & ) >;
void sinkIs( Sink sink );

// The registered descriptors, in the order of registration.
std::vector< Descriptor const * > descriptors();

}  // namespace Log
