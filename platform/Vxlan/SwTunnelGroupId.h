// Vxlan::SwTunnelGroupId: the name of a group of tunnels that the switch forwards in software. A
// VTEP that belongs to no group has the empty one, which a default-built one is. The text form is
// that of a string.
#pragma once

#include <compare>
#include <functional>
#include <string>
#include <utility>

#include <Quelm/Text.h>

namespace Vxlan {

class SwTunnelGroupId : public Quelm::Value {
 public:
   SwTunnelGroupId() = default;
   explicit SwTunnelGroupId( std::string name ) : name_( std::move( name ) ) {}

   std::string const & stringValue() const { return name_; }
   bool isEmpty() const { return name_.empty(); }

   friend bool operator==( SwTunnelGroupId const &, SwTunnelGroupId const & ) = default;
   friend std::strong_ordering operator<=>( SwTunnelGroupId const &,
                                            SwTunnelGroupId const & ) = default;

   static std::string_view textTypeName() { return "Vxlan::SwTunnelGroupId"; }
   void textTo( std::string & out ) const { Quelm::TextForm< std::string >::write( out, name_ ); }
   static SwTunnelGroupId textFrom( Quelm::TextReader & in ) {
      return SwTunnelGroupId( Quelm::TextForm< std::string >::read( in ) );
   }

 private:
   std::string name_;
};

}  // namespace Vxlan

template<> struct std::hash< Vxlan::SwTunnelGroupId > {
   std::size_t operator()( Vxlan::SwTunnelGroupId const & group ) const noexcept {
      return std::hash< std::string >()( group.stringValue() );
   }
};
