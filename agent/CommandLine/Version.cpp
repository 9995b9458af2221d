#include <CommandLine/Version.h>

#include <fmt/format.h>

#include <Record/Header.h>
#include <Steps/Schema.h>
#include <Story/DocumentVersion.h>

namespace CommandLine {

std::string_view version() {
   return VORNAL_VERSION;
}

std::string versions() {
   return fmt::format(
      "vornal {}, {}\n"
      "scenario language {}\n"
      "JSON documents {}\n"
      "records {}.{}\n"
      "plug-in interface {}",
      version(), commit(), Steps::kLanguageVersion, Story::kDocumentVersion, Record::kMajor,
      Record::kMinor, VORNAL_PLUGIN_INTERFACE );
}

}  // namespace CommandLine
