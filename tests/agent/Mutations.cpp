#include <Mutations.h>

#include <algorithm>

namespace Mutations {

namespace {

namespace fs = std::filesystem;
using Schema::Json;

std::size_t pick( std::mt19937 & random, std::size_t count ) {
   return random() % count;
}

template< typename T > T const & oneOf( std::mt19937 & random, std::vector< T > const & all ) {
   return all[ pick( random, all.size() ) ];
}

// What does not belong nearly anywhere.
std::vector< Json > const & strangers() {
   static std::vector< Json > const all{ nullptr,
                                         true,
                                         false,
                                         "true",
                                         "false",
                                         "",
                                         " ",
                                         0,
                                         -1,
                                         1,
                                         2,
                                         15,
                                         351,
                                         352,
                                         1023,
                                         1.5,
                                         4094,
                                         4095,
                                         4096,
                                         5000,
                                         65534,
                                         65535,
                                         65536,
                                         70000,
                                         16777215,
                                         16777216,
                                         4294967295U,
                                         4294967296U,
                                         1e30,
                                         "x",
                                         "1",
                                         "none",
                                         "default",
                                         "rules",
                                         "10.0.0.2",
                                         "10.0.0.1",
                                         "10.0.0.256",
                                         "10.0.0",
                                         "010.0.0.1",
                                         "224.0.0.1",
                                         "239.1.1.1",
                                         "0.0.0.0",
                                         "0.0.0.1",
                                         "127.0.0.1",
                                         "169.254.1.1",
                                         "255.255.255.255",
                                         "192.0.2.1",
                                         "::",
                                         "::1",
                                         "0:0:0:0:0:0:0:1",
                                         "::0.0.0.1",
                                         "::2",
                                         "fe80::1",
                                         "ff02::1",
                                         "ff0e::101",
                                         "2001:db8::2",
                                         "2001:DB8:0:0::2",
                                         "2001:db8::10.0.0.2",
                                         "1:2:3:4:5:6:7:8",
                                         "1:2:3:4:5:6:7::",
                                         "1:2:3:4:5:6:7:8:9",
                                         "1::2::3",
                                         "12345::1",
                                         ":1",
                                         "Ethernet1",
                                         "Ethernet99",
                                         "Ethernet01",
                                         "Ethernet65535",
                                         "Ethernet1/2/3",
                                         "Ethernet1/2/3/4",
                                         "Ethernet",
                                         "Port-Channel2",
                                         "Port-Channel1/1",
                                         "Vxlan1",
                                         "Vlan10",
                                         "Loopback0",
                                         "5-3",
                                         "3-5",
                                         "0-9,",
                                         "5",
                                         "/evpn/status",
                                         "/evpn/status/segmentStatus[Port-Channel2]",
                                         "/a[\"]\"]",
                                         "/a[]",
                                         "/a[",
                                         "a",
                                         "/",
                                         "subagents::l2Ready",
                                         "subagents::",
                                         "SrcVxlanGport",
                                         "Drop",
                                         "broadcast",
                                         "sent",
                                         "00:00:5e:00:53:01",
                                         "00:00:5e:00:53",
                                         "udp",
                                         "arp",
                                         "neighbour-solicitation",
                                         "bare",
                                         "egress-mask",
                                         "class-id",
                                         "caf\xc3\xa9",
                                         std::string( 300, 'y' ),
                                         Json::array(),
                                         Json::object(),
                                         Json::array( { nullptr } ),
                                         Json::array( { 1, 1 } ),
                                         Json::array( { "10.0.0.2", "10.0.0.2" } ),
                                         Json::array( { "Ethernet1", "Ethernet2" } ),
                                         Json{ { "x", 1 } },
                                         Json{ { "", 1 } } };
   return all;
}

std::vector< std::string > const & names() {
   static std::vector< std::string > const all{
      "",           "x",         "on",          "from",  "vni",       "key",        "count",
      "0",          "70000",     "0x10",        "5000",  "0x1000",    "010",        "-1",
      "10.0.0.256", "10.0.0.2",  "2001:db8::2", "::",    "Ethernet1", "Ethernet01", "Port-Channel2",
      "Vxlan1",     "PacketRes", "Drop",        "group", "expect",    "note",       "based-on"
   };
   return all;
}

// Every object and list of a scenario.
void collect( Json & value, std::vector< Json * > & all ) {
   if ( value.is_structured() && !value.empty() ) {
      all.push_back( &value );
      for ( Json & part : value ) {
         collect( part, all );
      }
   }
}

void renameIn( Json & object, std::string const & from, std::string const & to ) {
   Json renamed = Json::object();
   for ( auto const & [ name, value ] : object.items() ) {
      renamed[ name == from ? to : name ] = value;
   }
   object = renamed;
}

std::string changeObject( Json & object, std::mt19937 & random ) {
   auto member = object.begin();
   std::advance( member, static_cast< std::ptrdiff_t >( pick( random, object.size() ) ) );
   std::string const name = member.key();
   switch ( pick( random, 6 ) ) {
   case 0: object.erase( name ); return "without " + name;
   case 1: {
      std::string const & to = oneOf( random, names() );
      renameIn( object, name, to );
      return name + " called '" + to + "'";
   }
   case 2: {
      std::string const & to = oneOf( random, names() );
      object[ to ] = oneOf( random, strangers() );
      return "with '" + to + "': " + object[ to ].dump().substr( 0, 40 );
   }
   default: {
      member.value() = oneOf( random, strangers() );
      return name + " is " + member.value().dump().substr( 0, 40 );
   }
   }
}

std::string changeList( Json & list, std::mt19937 & random ) {
   std::size_t const at = pick( random, list.size() );
   switch ( pick( random, 4 ) ) {
   case 0: list.erase( at ); return "without element " + std::to_string( at );
   case 1:
      list.push_back( Json( list[ at ] ) );
      return "element " + std::to_string( at ) + " twice";
   case 2: {
      std::swap( list[ at ], list[ pick( random, list.size() ) ] );
      return "element " + std::to_string( at ) + " elsewhere";
   }
   default: {
      list[ at ] = oneOf( random, strangers() );
      return "element " + std::to_string( at ) + " is " + list[ at ].dump().substr( 0, 40 );
   }
   }
}

// What a value is to a person.
enum class Kind { number, yesOrNo, address, interface, name, structure };

Kind kindOf( Json const & value ) {
   if ( value.is_number() ) {
      return Kind::number;
   }
   if ( !value.is_string() ) {
      return value.is_boolean() ? Kind::yesOrNo : Kind::structure;
   }
   std::string const text = value;
   bool const isInterface = text.starts_with( "Ethernet" ) || text.starts_with( "Port-Channel" ) ||
                            text.starts_with( "Vxlan" ) || text.starts_with( "Loopback" );
   bool const isAddress = text.find_first_not_of( "0123456789abcdefDB.:" ) == std::string::npos &&
                          text.find_first_of( ".:" ) != std::string::npos;
   return isInterface ? Kind::interface : isAddress ? Kind::address : Kind::name;
}

// Calls `visit` with each value that has no parts, and its path, in which names with digits and the
// places of elements are all alike.
void visitPlaces( Json & value, std::string const & path,
                  std::function< void( Json &, std::string const & ) > const & visit ) {
   if ( value.is_object() ) {
      for ( auto const & [ name, member ] : value.items() ) {
         bool const isWord = name.find_first_of( "0123456789" ) == std::string::npos;
         visitPlaces( member, path + '/' + ( isWord ? name : "*" ), visit );
      }
   } else if ( value.is_array() ) {
      for ( Json & element : value ) {
         visitPlaces( element, path + "/-", visit );
      }
   } else {
      visit( value, path );
   }
}

}  // namespace

std::vector< fs::path > shippedFiles() {
   std::vector< fs::path > files;
   for ( auto const & entry : fs::recursive_directory_iterator( VORNAL_SOURCE_DIR "/scenarios" ) ) {
      if ( entry.path().filename() == "scenario.yaml" ) {
         files.push_back( entry.path() );
      }
   }
   std::sort( files.begin(), files.end() );
   return files;
}

Changed structural( Json const & scenario, std::mt19937 & random ) {
   Changed changed{ scenario, {} };
   std::vector< Json * > places;
   collect( changed.value, places );
   Json & place = *oneOf( random, places );
   changed.what = place.is_object() ? changeObject( place, random ) : changeList( place, random );
   return changed;
}

void atEveryPlace( Json const & scenario, std::set< std::string > & seen,
                   std::function< void( Changed const & ) > const & visit ) {
   Json copy = scenario;
   visitPlaces( copy, "", [ & ]( Json & place, std::string const & path ) {
      if ( !seen.insert( path ).second ) {
         return;
      }
      Json const before = place;
      for ( Json const & stranger : strangers() ) {
         if ( kindOf( stranger ) == kindOf( before ) || stranger.is_null() || stranger.empty() ) {
            place = stranger;
            visit( { copy, path + " is " + stranger.dump().substr( 0, 40 ) } );
         }
      }
      place = before;
   } );
}

ChangedText textual( std::string const & text, std::mt19937 & random ) {
   static std::vector< std::string > const bits{ std::string( 1, '\0' ),
                                                 "\x01",
                                                 "\x04",
                                                 "\x1b[31m",
                                                 "\x7f",
                                                 "\r",
                                                 "\t",
                                                 "\n",
                                                 "\xff",
                                                 "\xc3",
                                                 "\"",
                                                 "'",
                                                 "[",
                                                 "]",
                                                 "{",
                                                 "}",
                                                 ",",
                                                 ":",
                                                 ": ",
                                                 "- ",
                                                 "&a ",
                                                 "*a ",
                                                 "!x ",
                                                 "#",
                                                 " #",
                                                 "|\n",
                                                 ">\n",
                                                 "%",
                                                 "@",
                                                 "`",
                                                 "---\n",
                                                 "...\n",
                                                 "? ",
                                                 "\xef\xbb\xbf",
                                                 "\xc2\x9b",
                                                 "  " };
   std::size_t const at = pick( random, text.size() );
   std::string const where = " at " + std::to_string( at );
   std::size_t const begin = text.rfind( '\n', at ) + 1;
   std::size_t const end = std::min( text.find( '\n', at ), text.size() - 1 ) + 1;
   std::string const line = text.substr( begin, std::max( end, begin ) - begin );
   switch ( pick( random, 5 ) ) {
   case 0: return { text.substr( 0, at ), "cut off" + where };
   case 1: return { text.substr( 0, at ) + text.substr( at + 1 ), "a byte less" + where };
   case 2:
      return { text.substr( 0, begin ) + text.substr( begin + line.size() ),
               "a line less" + where };
   case 3: return { text.substr( 0, begin ) + line + text.substr( begin ), "a line twice" + where };
   default: {
      std::string const & bit = oneOf( random, bits );
      return { text.substr( 0, at ) + bit + text.substr( at ), "with " + bit + where };
   }
   }
}

}  // namespace Mutations
