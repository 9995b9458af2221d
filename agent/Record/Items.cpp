#include <Record/Items.h>

#include <Story/Codec.h>
#include <Story/EventForms.h>

namespace Record {

namespace {

namespace Binary = Story::Binary;

// Puts the length in front of the bytes that `add` appends.
template< typename Add > void writeWithLength( std::string & bytes, Add const & add ) {
   std::size_t const begin = bytes.size();
   add();
   std::string length;
   Binary::Out( length ).number( bytes.size() - begin );
   bytes.insert( begin, length );
}

constexpr U64 kEvent = std::variant_size_v< Item > - 1;
static_assert( std::is_same_v< std::variant_alternative_t< kEvent, Item >, Story::Event > );

}  // namespace

void write( std::string & bytes, Item const & item ) {
   writeWithLength( bytes, [ & ] {
      Binary::Out out( bytes );
      Binary::write( out, item );
   } );
}

void write( std::string & bytes, Story::Event const & event ) {
   writeWithLength( bytes, [ & ] {
      Binary::Out( bytes ).number( kEvent );
      Story::encodeInto( bytes, event );
   } );
}

Item takeItem( std::string_view & bytes ) {
   Binary::In in( bytes );
   std::string_view const own = in.bytes( in.number() );
   bytes.remove_prefix( static_cast< std::size_t >( own.data() - bytes.data() ) + own.size() );
   Binary::In fields( own );
   Item item;
   Binary::read( fields, item );
   fields.expectEnd();
   return item;
}

U64 layoutFingerprint() {
   return Binary::fingerprintOf< Item >();
}

}  // namespace Record
