#include <Log/Log.h>

#include <algorithm>
#include <iostream>

#include <Quelm/Text.h>

namespace Log {

namespace {

struct Shared {
   std::vector< Descriptor const * > descriptors;
   Sink sink;
};

// Never destroyed: handles of modules that are unloaded late still reach it.
Shared & shared() {
   static auto * const instance = new Shared;
   return *instance;
}

}  // namespace

Handle::Handle( Descriptor descriptor ) : descriptor_( std::move( descriptor ) ) {
   shared().descriptors.push_back( &descriptor_ );
}

Handle::~Handle() {
   auto & all = shared().descriptors;
   all.erase( std::find( all.begin(), all.end(), &descriptor_ ) );
}

void Handle::log( std::initializer_list< std::string_view > arguments ) const {
   std::string const line =
      "%VORNAL-" + std::to_string( static_cast< unsigned >( descriptor_.severity ) ) + "-" +
      descriptor_.name + ": " + Quelm::formatted( descriptor_.format, arguments );
   if ( shared().sink ) {
      shared().sink( Message{ descriptor_, line } );
   } else {
      std::cerr << line + '\n';
   }
}

void sinkIs( Sink sink ) {
   shared().sink = std::move( sink );
}

std::vector< Descriptor const * > descriptors() {
   return shared().descriptors;
}

}  // namespace Log
