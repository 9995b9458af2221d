// VornalTypes::VornalPortList: a set of chip ports.
//
// It iterates in the order of the ports (unit, logical port, module id), whatever the order in
// which they were inserted. Two lists are equal when they hold the same ports.
//
// The ports stand in one sorted array: inserting in port order costs a constant amount per port,
// any other insertion and each removal is linear, looking up is logarithmic. Reserved room stays
// when ports are removed, so a list that is reused allocates nothing. Inserting and removing
// end a walk over the list; portsDelIf removes while walking.
//
// The text lists the ports in that order, `{unit0/port5/mod0,unit0/port6/mod0}`, and is read in
// that order only.
#pragma once

#include <concepts>
#include <string>
#include <vector>

#include <Quelm/Text.h>
#include <VornalTypes/VornalPort.h>

namespace VornalTypes {

class VornalPortList : public Quelm::Value {
 public:
   // Insertion and removal; true when that changed the list.
   bool portIs( VornalPort const & port );
   bool portDel( VornalPort const & port );
   void portDelAll() { ports_.clear(); }
   // Removes the ports for which `shallGo` holds.
   template< std::predicate< VornalPort const & > ShallGo > void portsDelIf( ShallGo shallGo ) {
      std::erase_if( ports_, shallGo );
   }

   bool portHas( VornalPort const & port ) const;
   // The number of ports.
   std::size_t ports() const { return ports_.size(); }
   bool isEmpty() const { return ports_.empty(); }

   auto begin() const { return ports_.begin(); }
   auto end() const { return ports_.end(); }

   // Makes room for `count` ports in all.
   void reserve( std::size_t count ) { ports_.reserve( count ); }

   friend bool operator==( VornalPortList const &, VornalPortList const & ) = default;

   static std::string_view textTypeName() { return "VornalTypes::VornalPortList"; }
   void textTo( std::string & out ) const;
   static VornalPortList textFrom( Quelm::TextReader & in );

 private:
   std::vector< VornalPort > ports_;  // ascending, none twice
};

}  // namespace VornalTypes
