#include <CommandLine/Version.h>

namespace CommandLine {

std::string_view version() {
   return VORNAL_VERSION;
}

}  // namespace CommandLine
