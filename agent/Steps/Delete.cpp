#include <Steps/Delete.h>

#include <Quelm/Error.h>
#include <Scenario/Course.h>
#include <Scenario/Shape.h>
#include <Steps/Attributes.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

Scenario::Table< Delete > const & deleteTable() {
   static Scenario::Table< Delete > const table = Scenario::attributeTable< Delete >(
      { "delete", "Removes a key from one attribute of one entity, or empties a reference." }, {} );
   return table;
}

void checkDeletable( Kiv::Entity const & entity, Kiv::Attribute const & attribute,
                     std::string const & key ) {
   if ( attribute.isKeyed() && !attribute.has( entity, key ) ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() + "' has no key '" + key +
                                "', so nothing can be deleted" );
   }
}

}  // namespace

std::vector< WordList > Delete::vocabulary() {
   return { deleteTable().list() };
}

void Delete::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, deleteTable(), *this );
}

std::string Delete::description() const {
   return "delete " + textOf( at );
}

void Delete::follow( Scenario::Course & course ) const {
   course.mayChange( at.entity );
}

void Delete::change( Context const & context, int line ) const {
   auto const entity = context.evidence.finder.entity( at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, at.attribute );
   checkKey( *entity, attribute, at.key );
   checkDeletable( *entity, attribute, at.key );
   attribute.del( *entity, at.key );
   tellEmptyKey( context, at, line );
}

}  // namespace Steps
