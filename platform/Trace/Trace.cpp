#include <Trace/Trace.h>

#include <algorithm>
#include <iostream>

#include <Quelm/Error.h>
#include <Trace/Ring.h>

namespace Trace {

namespace {

struct Setting {
   std::string names;
   U32 levels;

   bool applies( std::string_view handle ) const {
      std::string_view const pattern = names;
      return pattern.ends_with( '*' )
                ? handle.starts_with( pattern.substr( 0, pattern.size() - 1 ) )
                : handle == pattern;
   }
};

// The data that handles share. They are built and destroyed while modules load and unload, so it is
// built on first use and never destroyed.
struct Shared {
   std::vector< Handle * > handles;
   // The defaults: level 0 in the text, levels 0 to 5 in the ring.
   std::vector< Setting > textSettings{ { "*", 0x001 } };
   std::vector< Setting > ringSettings{ { "*", 0x03f } };
   Sink sink;
   Ring * ring = nullptr;
};

Shared & shared() {
   static auto * const instance = new Shared;
   return *instance;
}

U32 levelsFor( std::vector< Setting > const & settings, std::string_view handle ) {
   U32 levels = 0;
   for ( Setting const & setting : settings ) {
      levels = setting.applies( handle ) ? setting.levels : levels;
   }
   return levels;
}

unsigned levelAt( std::string_view text, std::size_t position ) {
   if ( position >= text.size() || text[ position ] < '0' || text[ position ] > '9' ) {
      throw Quelm::TextError( "'" + std::string( text ) +
                              "' is not a list of trace levels such as '0-5,9'" );
   }
   return static_cast< unsigned >( text[ position ] - '0' );
}

}  // namespace

U32 levelsFromText( std::string_view text ) {
   U32 levels = 0;
   for ( std::size_t at = 0; at < text.size(); ++at ) {
      unsigned const first = levelAt( text, at++ );
      unsigned last = first;
      if ( at < text.size() && text[ at ] == '-' ) {
         last = levelAt( text, at + 1 );
         at += 2;
      }
      if ( last < first || ( at < text.size() && text[ at ] != ',' ) || at + 1 == text.size() ) {
         levelAt( text, text.size() );
      }
      for ( unsigned level = first; level <= last; ++level ) {
         levels |= 1U << level;
      }
   }
   return levels;
}

bool Handle::hasRing_ = false;

Handle::Handle( std::string name )
      : name_( std::move( name ) ),
        textLevels_( levelsFor( shared().textSettings, name_ ) ),
        ringLevels_( levelsFor( shared().ringSettings, name_ ) ) {
   shared().handles.push_back( this );
}

Handle::~Handle() {
   auto & handles = shared().handles;
   handles.erase( std::find( handles.begin(), handles.end(), this ) );
}

void Handle::line( int level, std::string const & text ) const {
   if ( shared().sink ) {
      shared().sink( Line{ name_, level, text } );
   } else {
      std::cerr << name_ << ' ' << level << ' ' + text + '\n';
   }
}

void Handle::ringLine( int level, std::string const & text ) const {
   if ( hasRing_ && isRingEnabled( level ) ) {
      shared().ring->lineNew( Line{ name_, level, text } );
   }
   if ( isTextEnabled( level ) ) {
      line( level, text );
   }
}

void sinkIs( Sink sink ) {
   shared().sink = std::move( sink );
}

void ringIs( Ring * ring ) {
   shared().ring = ring;
   Handle::hasRing_ = ring != nullptr;
}

void levelsIs( std::string const & names, std::string_view levels ) {
   Setting const setting{ names, levelsFromText( levels ) };
   shared().textSettings.push_back( setting );
   for ( Handle * const handle : shared().handles ) {
      if ( setting.applies( handle->name() ) ) {
         handle->textLevelsIs( setting.levels );
      }
   }
}

void ringLevelsIs( std::string const & names, std::string_view levels ) {
   Setting const setting{ names, levelsFromText( levels ) };
   shared().ringSettings.push_back( setting );
   for ( Handle * const handle : shared().handles ) {
      if ( setting.applies( handle->name() ) ) {
         handle->ringLevelsIs( setting.levels );
      }
   }
}

std::vector< std::string > handleNames() {
   std::vector< std::string > names;
   for ( Handle const * const handle : shared().handles ) {
      names.push_back( handle->name() );
   }
   return names;
}

}  // namespace Trace
