// The names that the state speaks of: interfaces, remote VTEPs, chip ports.
//
// Order matters where several things happen at one event. The agent walks its state in the order of
// the keys: interfaces by kind and number, addresses IPv4 first and then by value, ports by unit
// and number.
#pragma once

#include <compare>
#include <string>
#include <vector>

namespace Reference {

// "Ethernet10" comes after "Ethernet2", and every Ethernet interface before every port channel.
class Interface {
 public:
   Interface() = default;
   explicit Interface( std::string name );

   std::string const & name() const { return name_; }
   bool isPortChannel() const { return name_.starts_with( "Port-Channel" ); }

   friend bool operator==( Interface const & a, Interface const & b ) { return a.name_ == b.name_; }
   friend auto operator<=>( Interface const & a, Interface const & b ) {
      return a.kind_ != b.kind_ ? a.kind_ <=> b.kind_ : a.numbers_ <=> b.numbers_;
   }

 private:
   std::string name_;
   std::string kind_;
   std::vector< unsigned > numbers_;
};

// A remote VTEP, by its address.
class Vtep {
 public:
   Vtep() = default;
   // `address` is written as the agent writes it; the text goes into the names of rules.
   explicit Vtep( std::string address );

   std::string const & address() const { return address_; }
   bool isIpv4() const { return bytes_.size() == 4; }

   friend bool operator==( Vtep const & a, Vtep const & b ) { return a.bytes_ == b.bytes_; }
   friend auto operator<=>( Vtep const & a, Vtep const & b ) {
      return a.bytes_.size() != b.bytes_.size() ? a.bytes_.size() <=> b.bytes_.size()
                                                : a.bytes_ <=> b.bytes_;
   }

 private:
   std::string address_;
   std::vector< unsigned char > bytes_;
};

// Another key of a VTEP than its usual one: of a tunnel group, or of another tunnel interface than
// Vxlan1. Everybody who looks for a VTEP looks for its usual key.
struct OtherKey {
   std::string group;
   unsigned tunnel = 1;
   Vtep vtep;

   friend auto operator<=>( OtherKey const &, OtherKey const & ) = default;
};

struct Port {
   static constexpr unsigned kInvalid = 1023;
   static constexpr unsigned kHighestInMask = 351;

   unsigned unit = 0;
   unsigned number = kInvalid;
   unsigned module = 0;

   friend auto operator<=>( Port const &, Port const & ) = default;
};

}  // namespace Reference
