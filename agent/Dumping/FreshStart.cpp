#include <Dumping/FreshStart.h>

#include <algorithm>
#include <set>

#include <Dumping/Items.h>

namespace Dumping {

namespace {

using Scenario::Yaml;
using Scenario::yamlList;
using Scenario::yamlMapping;
using Scenario::yamlText;

// The parts of a scenario that a state fills.
class Parts {
 public:
   explicit Parts( Yaml const & scenario ) {
      for ( std::string_view const part : { "interfaces", "port-channels" } ) {
         define( *scenario.find( "switch" ), part );
      }
   }

   void take( Item const & item ) {
      if ( item.shape == "/shared/vornalCommon/vornalIntfToPort[]" ) {
         takePort( item );
      } else if ( item.shape == "/lag/config/phyIntf[]/lag" ) {
         part( "interfaces", item.keys[ 0 ] );
         part( "port-channels", item.value ).add( yamlText( item.keys[ 0 ] ) );
      } else if ( item.shape == "/evpn/status/segmentStatus[]/intfId" ) {
         takeSegment( item.keys[ 0 ] );
      } else if ( item.shape == "/evpn/status/segmentStatus[]/remoteTep[]" ) {
         takeSegment( item.keys[ 0 ] ).add( yamlText( item.keys[ 1 ] ) );
      } else if ( item.shape == "/hardware/vornal/vp/status/vornalL3/remoteVport[]" ) {
         takeVtep( item );
      } else if ( item.shape == "/interface/status/eth/vxlan/vtiStatus[]/intfId" ) {
         part( "tunnel-interfaces", item.keys[ 0 ] ).isInLine = true;
      } else if ( item.shape == "/interface/status/eth/vxlan/vtiStatus[]/vrfToVniMap[]" ) {
         Yaml & vnis = part( "tunnel-interfaces", item.keys[ 0 ] ).part( "vrf-vni" );
         vnis.set( item.keys[ 1 ], yamlText( item.value ) );
      } else {
         takeMore( item );
      }
   }

   std::set< std::string > const & ready() const { return ready_; }
   Yaml const & requests() const { return requests_; }
   Yaml const & grants() const { return grants_; }
   Yaml const * find( std::string_view name ) const {
      Yaml const * const found = parts_.find( name );
      return found && !found->parts.empty() ? found : nullptr;
   }

 private:
   // What the scenario defines keeps its place; it is filled by the state.
   void define( Yaml const & device, std::string_view name ) {
      Yaml const * const defined = device.find( name );
      for ( Yaml const & one : defined ? defined->parts : std::vector< Yaml >() ) {
         part( name, one.key );
      }
   }

   Yaml & part( std::string_view name, std::string const & key ) {
      Yaml & found = parts_.part( name ).part( key );
      if ( !found.isThere() ) {
         bool const isList = name == "port-channels" || name == "segments";
         Yaml empty = inLine( isList ? yamlList() : yamlMapping() );
         empty.key = key;
         found = empty;
      }
      return found;
   }

   void takePort( Item const & item ) {
      auto const port = portOf( item.value );
      if ( port && ports_.insert( item.value ).second ) {
         part( "interfaces", item.keys[ 0 ] );
         parts_.part( "interfaces" ).set( item.keys[ 0 ], *port );
      }
   }

   Yaml & takeSegment( std::string const & intf ) {
      part( intf.starts_with( "Port-Channel" ) ? "port-channels" : "interfaces", intf );
      return part( "segments", intf );
   }

   // The chip cannot tell VTEPs with one VP index apart, so a scenario cannot publish them.
   void takeVtep( Item const & item ) {
      bool const isUsual = item.keys[ 0 ].find_first_of( "@#" ) == std::string::npos;
      if ( isUsual && indices_.insert( std::stoul( item.value ) & 0xffffU ).second ) {
         part( "vteps", item.keys[ 0 ] ).set( "virtual-port", yamlText( item.value ) );
      }
   }

   void takeMore( Item const & item ) {
      bool const isOfClassIds = item.shape.starts_with( "/hardware/vornal/i2eclassid/" );
      if ( item.shape ==
           "/shared/vornalCommon/sliceDependencyPoints/subAgentDependencyPoints/ready[]" ) {
         ready_.insert( item.keys[ 0 ] );
      } else if ( isOfClassIds && item.shape.find( "/config/" ) != std::string::npos ) {
         requests_.add( yamlText( item.keys[ 0 ] ) );
      } else if ( isOfClassIds ) {
         grants_.set( item.keys[ 0 ], yamlText( item.value ) );
      }
   }

   Yaml parts_ = yamlMapping();
   std::set< std::string > ports_;
   std::set< unsigned long > indices_;
   std::set< std::string > ready_;
   Yaml requests_ = inLine( yamlList() );
   Yaml grants_ = inLine( yamlMapping() );
};

Yaml step( std::string const & word, Yaml content ) {
   return yamlMapping( { { word, std::move( content ) } } );
}

void setOrRemove( Yaml & mapping, std::string_view word, Yaml const * value ) {
   if ( value ) {
      mapping.set( word, *value );
   } else {
      mapping.remove( word );
   }
}

Yaml evpnOf( Parts const & parts ) {
   Yaml evpn = yamlMapping();
   for ( std::string_view const word : { "segments", "vteps", "tunnel-interfaces" } ) {
      setOrRemove( evpn, word, parts.find( word ) );
   }
   // A plug-in that is ready makes its own requests.
   if ( parts.ready().empty() ) {
      setOrRemove( evpn, "class-id-requests",
                   parts.requests().parts.empty() ? nullptr : &parts.requests() );
      setOrRemove( evpn, "class-id-grants",
                   parts.grants().parts.empty() ? nullptr : &parts.grants() );
   }
   return evpn;
}

// --- The steps

void addReady( Parts const & parts, bool areGrantsByHand, bool isPaused, Yaml & steps ) {
   auto const allocator = [ & ]( std::string_view word ) {
      steps.add( step( "class-id-allocator", yamlText( word ) ) );
   };
   bool const isHeld = areGrantsByHand || isPaused;
   if ( isHeld ) {
      allocator( "paused" );
   }
   for ( std::string const & point : parts.ready() ) {
      steps.add( step( "ready", yamlText( "subagents::" + point ) ) );
   }
   if ( areGrantsByHand && !parts.grants().parts.empty() ) {
      steps.add( step( "publish", inLine( step( "class-id-grants", parts.grants() ) ) ) );
   }
   if ( isHeld && !isPaused ) {
      allocator( "serving" );
   }
}

Yaml stepsOf( Parts const & parts, Past const & past, Order const & order ) {
   Yaml steps = yamlList();
   auto const addForeign = [ & ] {
      for ( Yaml const & one : past.foreignEntries ) {
         steps.add( one );
      }
   };
   if ( order.areForeignFirst ) {
      addForeign();
   }
   addReady( parts, order.areGrantsByHand, past.isAllocatorPaused, steps );
   if ( !order.areForeignFirst ) {
      addForeign();
   }
   return steps;
}

void setForwarders( Past const & past, Yaml & scenario ) {
   if ( past.designated.empty() || !scenario.find( "forwarding" ) ) {
      return;
   }
   Yaml & forwarding = scenario.part( "forwarding" );
   Yaml const * const before = forwarding.find( "not-designated" );
   Yaml others = before ? *before : inLine( yamlList() );
   for ( auto const & [ intf, isDesignated ] : past.designated ) {
      std::erase_if( others.parts,
                     [ name = intf ]( Yaml const & one ) { return one.text == name; } );
      if ( !isDesignated ) {
         others.add( yamlText( intf ) );
      }
   }
   setOrRemove( forwarding, "not-designated", others.parts.empty() ? nullptr : &others );
}

}  // namespace

std::vector< Order > ordersFor( Story::Table const & state, Past const & past ) {
   auto const items = publishedItems( state );
   bool const hasGrants = std::any_of( items.begin(), items.end(), []( Item const & item ) {
      return item.shape.starts_with( "/hardware/vornal/i2eclassid/status/" );
   } );
   std::vector< Order > orders{ {} };
   if ( hasGrants ) {
      orders.push_back( { false, true } );
   }
   if ( !past.foreignEntries.empty() ) {
      orders.push_back( { true, false } );
   }
   if ( hasGrants && !past.foreignEntries.empty() ) {
      orders.push_back( { true, true } );
   }
   return orders;
}

Yaml freshStart( Yaml const & scenario, Story::Table const & state, Past const & past,
                 Order const & order ) {
   Parts parts( scenario );
   for ( Item const & item : publishedItems( state ) ) {
      parts.take( item );
   }
   Yaml document = scenario;
   Yaml & device = document.part( "switch" );
   setOrRemove( device, "interfaces", parts.find( "interfaces" ) );
   setOrRemove( device, "port-channels", parts.find( "port-channels" ) );
   setForwarders( past, document );
   Yaml const evpn = evpnOf( parts );
   setOrRemove( document, "evpn", evpn.parts.empty() ? nullptr : &evpn );
   document.set( "steps", stepsOf( parts, past, order ) );
   return document;
}

Yaml withoutVlansOfMembers( Yaml scenario, Story::Table const & state ) {
   std::set< std::string > members;
   for ( Item const & item : publishedItems( state ) ) {
      if ( item.shape == "/lag/config/phyIntf[]/lag" ) {
         members.insert( item.keys[ 0 ] );
      }
   }
   if ( !scenario.find( "forwarding" ) ) {
      return scenario;
   }
   Yaml & forwarding = scenario.part( "forwarding" );
   for ( std::string_view const word : { "access", "trunk", "not-designated" } ) {
      if ( !forwarding.find( word ) ) {
         continue;
      }
      std::vector< Yaml > & parts = forwarding.part( word ).parts;
      std::erase_if( parts, [ & ]( Yaml const & part ) {
         return members.contains( part.key.empty() ? part.text : part.key );
      } );
      if ( parts.empty() ) {
         forwarding.remove( word );
      }
   }
   return scenario;
}

}  // namespace Dumping
