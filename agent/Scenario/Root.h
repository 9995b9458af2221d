// Where the files of a scenario stand.
//
// A scenario names files by paths. They stand at these paths, or in a folder that holds copies of
// them, each at its path below the folder. Problems and places name the paths alone, so a scenario
// reads the same from a copy.
#pragma once

#include <filesystem>

namespace Scenario {

class Root {
 public:
   // The files stand at their paths.
   Root() = default;
   // They stand below `folder`; a relative path starts at `directory`. No path leads out of the
   // folder.
   Root( std::filesystem::path folder, std::filesystem::path directory )
         : folder_( std::move( folder ) ), directory_( std::move( directory ) ) {}

   // The place of a file, or of a directory, that a scenario names.
   std::filesystem::path placeOf( std::filesystem::path const & name ) const {
      return folder_.empty()
                ? name
                : folder_ / ( "/" / directory_ / name ).lexically_normal().relative_path();
   }

 private:
   std::filesystem::path folder_;
   std::filesystem::path directory_;
};

}  // namespace Scenario
