#include <Steps/Replace.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Scenario/Course.h>
#include <Scenario/Parts.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

using Quelm::textOf;
using Scenario::Replacement;
using Scenario::SegmentReplaced;
using Scenario::TunnelInterfaceReplaced;

// Groups the changes by entity: a segment or a tunnel interface begins one, its parts follow.
class Entities {
 public:
   explicit Entities( std::vector< Replacement > & all ) : all_( all ) {}

   void add( Scenario::Segment const & what, int line ) {
      all_.push_back( { SegmentReplaced{ what.intf, {} }, line } );
   }
   void add( Scenario::SegmentVtep const & what, int ) {
      std::get< SegmentReplaced >( all_.back().what ).vteps.push_back( what.vtep );
   }
   void add( Scenario::TunnelInterface const & what, int line ) {
      all_.push_back( { TunnelInterfaceReplaced{ what.intf, {} }, line } );
   }
   void add( Scenario::VrfVni const & what, int ) {
      std::get< TunnelInterfaceReplaced >( all_.back().what ).vnis.push_back( what );
   }
   template< typename Other > void add( Other const &, int ) {}

 private:
   std::vector< Replacement > & all_;
};

std::string describe( SegmentReplaced const & what ) {
   std::vector< std::string > vteps;
   for ( Pelk::IpGenAddr const & vtep : what.vteps ) {
      vteps.push_back( textOf( vtep ) );
   }
   return fmt::format( "segment {} with {}{}", textOf( what.intf ),
                       vteps.empty() ? "no VTEP" : "VTEP ", fmt::join( vteps, " and " ) );
}

std::string describe( TunnelInterfaceReplaced const & what ) {
   std::vector< std::string > vnis;
   for ( Scenario::VrfVni const & vrf : what.vnis ) {
      vnis.push_back( fmt::format( "VNI {} of VRF {}", textOf( vrf.vni ), vrf.vrf.stringValue() ) );
   }
   return fmt::format( "tunnel interface {} with {}{}", textOf( what.intf ),
                       vnis.empty() ? "no VNI" : "", fmt::join( vnis, " and " ) );
}

}  // namespace

void Replace::read( Reading & reading, Value const & value ) {
   std::vector< Scenario::Change > changes;
   readReplaced( reading, value, changes );
   Entities entities( replacements );
   for ( Scenario::Change const & one : changes ) {
      std::visit( [ & ]( auto const & what ) { entities.add( what, one.line ); }, one.what );
   }
}

std::string Replace::description() const {
   std::vector< std::string > texts;
   for ( Replacement const & one : replacements ) {
      texts.push_back(
         std::visit( []( auto const & what ) { return describe( what ); }, one.what ) );
   }
   return fmt::format( "replace by {}", fmt::join( texts, ", " ) );
}

void Replace::follow( Scenario::Course & course ) const {
   course.replace( replacements );
}

void Replace::queue( Context const & context, int ) const {
   for ( Replacement const & one : replacements ) {
      context.turnNew( one.line, [ &context, &one ] { context.published.replace( one.what ); } );
   }
}

void Replace::change( Context const & context, int /*line*/ ) const {
   for ( Replacement const & one : replacements ) {
      context.at( one.line, [ & ] { context.published.replace( one.what ); } );
   }
}

}  // namespace Steps
