// What the tests of the agent share.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <Story/Observer.h>

namespace Support {

// Keeps everything that it is told.
class Recorder final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override { events_.push_back( event ); }

   std::vector< Story::Event > const & events() const { return events_; }
   void clear() { events_.clear(); }

   // The events of one kind, in order.
   template< typename T > std::vector< T > all() const {
      std::vector< T > result;
      for ( Story::Event const & event : events_ ) {
         if ( T const * const one = std::get_if< T >( &event ) ) {
            result.push_back( *one );
         }
      }
      return result;
   }

   // Where the first event of that kind for which `is` holds stands; the number of events if
   // nowhere.
   template< typename T, typename Is > std::size_t placeOf( Is is ) const {
      auto const found = std::find_if( events_.begin(), events_.end(), [ & ]( auto const & event ) {
         T const * const one = std::get_if< T >( &event );
         return one && is( *one );
      } );
      return static_cast< std::size_t >( found - events_.begin() );
   }

 private:
   std::vector< Story::Event > events_;
};

// A directory of the test's own, gone with it.
class Directory {
 public:
   Directory();
   Directory( Directory const & ) = delete;
   Directory & operator=( Directory const & ) = delete;
   ~Directory() { std::filesystem::remove_all( path_ ); }

   std::filesystem::path const & path() const { return path_; }

   // Writes a file; its path.
   std::filesystem::path file( std::string const & name, std::string const & content ) const {
      std::ofstream( path_ / name ) << content;
      return path_ / name;
   }

 private:
   std::filesystem::path path_;
};

std::string contentOf( std::filesystem::path const & file );

bool contains( std::string const & text, std::string const & part );
// How often `part` stands in `text`.
std::size_t timesIn( std::string const & text, std::string const & part );

// What a program did.
struct Ran {
   int exitCode = 0;
   std::string out;
   std::string err;
};

// Runs `vornal` with these arguments and without a terminal. Variables, such as "TMPDIR=/nowhere",
// stand in front of those of this process.
Ran vornal( std::vector< std::string > const & arguments,
            std::vector< std::string > const & variables = {} );

// The shared object of the plug-in that ships.
std::filesystem::path plugin();
// The shared object of a plug-in in tests/agent/plugins.
std::filesystem::path testPlugin( std::string const & name );

}  // namespace Support
