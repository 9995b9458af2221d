#include <Scenario/Parts.h>

namespace Scenario {

namespace {

// Segments and tunnel interfaces begin an entity, what follows is in it.
class Entities {
 public:
   explicit Entities( std::vector< Replacement > & all ) : all_( all ) {}

   void add( Segment const & what, int line ) {
      all_.push_back( { SegmentReplaced{ what.intf, {} }, line } );
   }
   void add( SegmentVtep const & what, int ) {
      std::get< SegmentReplaced >( all_.back().what ).vteps.push_back( what.vtep );
   }
   void add( TunnelInterface const & what, int line ) {
      all_.push_back( { TunnelInterfaceReplaced{ what.intf, {} }, line } );
   }
   void add( VrfVni const & what, int ) {
      std::get< TunnelInterfaceReplaced >( all_.back().what ).vnis.push_back( what );
   }
   template< typename Other > void add( Other const &, int ) {}

 private:
   std::vector< Replacement > & all_;
};

}  // namespace

void readReplace( Reading & reading, Value const & value, Replace & replace ) {
   std::vector< Change > changes;
   readReplaced( reading, value, changes );
   Entities entities( replace.replacements );
   for ( Change const & change : changes ) {
      std::visit( [ & ]( auto const & what ) { entities.add( what, change.line ); }, change.what );
   }
}

}  // namespace Scenario
