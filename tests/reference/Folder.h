// A folder of a test's own, gone with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

class Folder {
 public:
   Folder() {
      std::string name = std::filesystem::temp_directory_path() / "test-reference-XXXXXX";
      path_ = mkdtemp( name.data() );
   }
   Folder( Folder const & ) = delete;
   Folder & operator=( Folder const & ) = delete;
   ~Folder() { std::filesystem::remove_all( path_ ); }

   std::filesystem::path const & path() const { return path_; }

 private:
   std::filesystem::path path_;
};
