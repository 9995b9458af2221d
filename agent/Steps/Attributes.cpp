#include <Steps/Attributes.h>

#include <iostream>

#include <Quelm/Error.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

bool isEmptyKey( Kiv::Attribute const & attribute, std::string const & key ) {
   return attribute.isKeyed() && key.empty();
}

}  // namespace

void checkKey( Kiv::Entity & entity, Kiv::Attribute const & attribute, std::string const & key ) {
   try {
      static_cast< void >( isEmptyKey( attribute, key ) && attribute.has( entity, key ) );
   } catch ( Quelm::TextError const & ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() +
                                "' has keys; give one with 'key'" );
   }
   if ( !attribute.isKeyed() && !key.empty() ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() +
                                "' has no keys; leave the key out" );
   }
}

void tellEmptyKey( Context const & context, Scenario::AttributeAt const & at, int line ) {
   auto const entity = context.evidence.finder.entity( at.entity );
   if ( isEmptyKey( StateDatabase::attributeOf( *entity, at.attribute ), at.key ) ) {
      std::cerr << context.placeOf( line ) + ": 'key' is left out, so the entry of '" +
                      at.attribute + "' under the empty key is used\n";
   }
}

}  // namespace Steps
