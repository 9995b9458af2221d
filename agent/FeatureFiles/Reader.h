// FeatureFiles::Reader: feature toggles from JSON files in one directory.
//
//    VornalL3.json      { "SbdEvpnTcamOverrideRule": false }
//
// A file is one object whose members are all booleans. The reader reads a file when somebody first
// asks for one of its toggles, and keeps it: a later change of the file counts from the next start.
//
// A toggle has its default when its file does not exist or does not name it. Anything else that
// stands in the file's place (other JSON, a pipe, a device, a directory) is damaged. The reader
// reports a damaged file once, in one line that names file, line and remedy, and takes nothing from
// it, since nobody can tell which half of it is right.
//
// Threads: the activity's.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <FeatureToggle/FeatureToggle.h>

namespace FeatureFiles {

// What is wrong with a file, and where.
struct Damage {
   std::filesystem::path file;
   std::size_t line = 0;  // 0: the file as a whole
   std::string what;      // the mistake and the remedy

   // "FILE:LINE: WHAT".
   std::string text() const;
};

class Reader final : public FeatureToggle::Facility {
 public:
   // A larger file is damaged. In bytes; a file of all toggles has a few thousand.
   static constexpr std::uintmax_t kLongest = 16U << 20U;

   // Takes the report of a damaged file.
   using Report = std::function< void( Damage const & ) >;

   // Looks for the files in `directory`, which need not exist. Without a `report`, its text
   // goes to standard error.
   explicit Reader( std::filesystem::path directory, Report report = {} );

   bool isEnabled( std::string const & name, std::string const & file, bool defaultValue ) override;

   // A toggle that a file names and nobody has asked for.
   struct NotAskedFor {
      std::filesystem::path file;
      std::string name;
      std::vector< std::string > asked;  // the toggles of that file that were asked for
   };
   // The toggles of all files that have been read.
   std::vector< NotAskedFor > notAskedFor() const;

 private:
   using Toggles = std::map< std::string, bool >;
   struct File {
      Toggles toggles;
      std::set< std::string > asked{};
   };

   File & fileNamed( std::string const & file );
   Toggles read( std::filesystem::path const & path ) const;
   Toggles togglesOf( std::string const & text, std::filesystem::path const & path ) const;
   void reportDamage( std::filesystem::path const & path, std::size_t line,
                      std::string const & what ) const;

   std::filesystem::path directory_;
   Report report_;
   std::map< std::string, File > files_;  // those asked for so far
};

}  // namespace FeatureFiles
