// FeatureFiles::Reader: feature toggles from JSON files in one directory.
//
//    VornalL3.json      { "SbdEvpnTcamOverrideRule": false }
//
// A file is an object whose members are all booleans. It is read when a toggle of it is first asked
// for, and kept: what support staff change later counts from the next start.
//
// A file that is not there gives every toggle its default, as does a toggle that is not in the
// file. A file that is there and is not such an object, a pipe, a device or a directory also, is
// damaged: it is reported once, as one line
// that names file, line and remedy, and then reads as if it were not there. Nothing is taken from a
// damaged file, since nobody can tell which half of it was meant.
//
// Threads: the activity's.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <FeatureToggle/FeatureToggle.h>

namespace FeatureFiles {

class Reader final : public FeatureToggle::Facility {
 public:
   // Takes the line about a damaged file.
   using Report = std::function< void( std::string const & ) >;

   // The files are looked for in `directory`, which need not exist. Without a `report`, lines go to
   // standard error.
   explicit Reader( std::filesystem::path directory, Report report = {} );

   bool isEnabled( std::string const & name, std::string const & file, bool defaultValue ) override;

   // A toggle that a file names, and nobody has asked for.
   struct NotAskedFor {
      std::filesystem::path file;
      std::string name;
      std::vector< std::string > asked;  // what was asked for of that file
   };
   // Those of all files that have been read.
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
