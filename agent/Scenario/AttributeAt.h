// One attribute of one entity, in the words of steps and expectations.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <StateDatabase/EntityPath.h>

namespace Scenario {

// `key` is empty for an attribute without keys. The texts have the text forms of Quelm/Text.h,
// which the generic interface (Kiv/Attribute.h) takes and gives.
struct AttributeAt {
   StateDatabase::EntityPath entity;
   std::string attribute;
   std::string key;
};

// "/evpn/status segmentStatus[Ethernet1]"
std::string textOf( AttributeAt const & at );

void readPath( Reading & reading, Value const & value, StateDatabase::EntityPath & path );

template< typename T > void readEntity( Reading & reading, Value const & value, T & target ) {
   readPath( reading, value, target.at.entity );
}

template< typename T, std::string AttributeAt::*member >
void readPlace( Reading & reading, Value const & value, T & target ) {
   readText< AttributeAt, member >( reading, value, target.at );
}

// The words of a mapping about one attribute of one entity: those of its `at`, then `others`.
template< typename T >
Table< T > attributeTable( Place const & place, std::vector< Word< T > > const & others ) {
   Table< T > table{
      place,
      { { { "entity", "entity: /evpn/status", Shape::of( "path" ) }, readEntity< T > },
        { { "attribute", "attribute: segmentStatus", Shape::of( "text", "The attribute's name." ) },
          readPlace< T, &AttributeAt::attribute > },
        { { "key", "", Shape::of( "text", "The key, of an attribute that has keys." ) },
          readPlace< T, &AttributeAt::key > } }
   };
   table.words.insert( table.words.end(), others.begin(), others.end() );
   return table;
}

}  // namespace Scenario
