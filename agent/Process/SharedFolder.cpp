#include <Process/SharedFolder.h>

#include <optional>

#include <Story/InputError.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Process {

namespace fs = std::filesystem;

namespace {

struct stat const * found( int result, struct stat const & about ) {
   return result == 0 ? &about : nullptr;
}

// The owner of a folder that everybody can write to; nothing for any other folder.
std::optional< uid_t > ownerOfShared( fs::path const & folder ) {
   struct stat about {};
   auto const * const there = found( stat( folder.c_str(), &about ), about );
   return there && ( there->st_mode & S_IWOTH ) != 0 ? std::optional( there->st_uid )
                                                     : std::nullopt;
}

void check( fs::path const & name, fs::path const & output ) {
   auto const owner = ownerOfShared( name.parent_path() );
   struct stat about {};
   auto const * const there = found( lstat( name.c_str(), &about ), about );
   if ( owner && there && there->st_uid != geteuid() && there->st_uid != *owner ) {
      throw Story::InputError( output.string() + " cannot be written safely: " + name.string() +
                               ( S_ISLNK( there->st_mode ) ? " is a link" : " is" ) +
                               " of another user, in a folder that everybody can write to; name a "
                               "file in a folder of your own" );
   }
}

// Its name and all folders on the way there.
fs::path wholePath( fs::path const & output ) {
   std::error_code error;
   fs::path const path = fs::absolute( output, error );
   return path.has_filename() ? path : path.parent_path();
}

}  // namespace

void refuseForeign( fs::path const & output ) {
   fs::path name;
   for ( fs::path const & part : wholePath( output ) ) {
      name /= part;
      if ( name.has_relative_path() ) {
         check( name, output );
      }
   }
}

int flagsToOpen( fs::path const & output ) {
   refuseForeign( output );
   return ownerOfShared( wholePath( output ).parent_path() ) ? O_NOFOLLOW : 0;
}

}  // namespace Process
