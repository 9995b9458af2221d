// EntityPath: the place of an entity of a running switch.
//
//    /evpn/status                                            a mounted entity
//    /evpn/status/segmentStatus[Port-Channel2]               a member of one of its collections
//    /shared/vornalCommon/sliceDependencyPoints              the entity that a reference names
//    /plugins/Vornal::VornalEvpnMounter                      a plug-in's mounter
//
// A path begins with the place where an entity is mounted, or with /shared or /plugins and a name.
// Each further segment names an attribute that leads to another entity, with the key in brackets if
// the attribute has keys. The text alone does not show where the first part ends: the finder takes
// the longest beginning that is mounted.
//
// Names consist of letters, digits and any of "_-.:@#". A key has the text form of its type
// (Quelm/Text.h), so it may hold '/'; a ']' in it stands within double quotes.
//
// Failures: only reading fails, with Quelm::TextError. Reading and writing are each other's
// inverse.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Quelm/Text.h>

namespace StateDatabase {

class EntityPath : public Quelm::Value {
 public:
   struct Segment {
      std::string name;
      std::optional< std::string > key;  // the text in the brackets

      friend bool operator==( Segment const &, Segment const & ) = default;
   };

   // An empty path, which has no text.
   EntityPath() = default;
   // Takes one segment at least.
   explicit EntityPath( std::vector< Segment > segments ) : segments_( std::move( segments ) ) {}

   static EntityPath fromString( std::string_view text );

   std::vector< Segment > const & segments() const { return segments_; }
   std::string stringValue() const { return Quelm::textOf( *this ); }

   friend bool operator==( EntityPath const &, EntityPath const & ) = default;

   static std::string_view textTypeName() { return "StateDatabase::EntityPath"; }
   void textTo( std::string & out ) const;
   static EntityPath textFrom( Quelm::TextReader & in );

 private:
   std::vector< Segment > segments_;
};

}  // namespace StateDatabase
