#include <Steps/Set.h>

#include <Quelm/Error.h>
#include <Scenario/Course.h>
#include <Scenario/Shape.h>
#include <Steps/Attributes.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

Scenario::Table< Set > const & setTable() {
   static Scenario::Table< Set > const table = Scenario::attributeTable< Set >(
      { "set", "Sets one attribute of one entity, or inserts into it." },
      { { { "value", "",
            Shape::of( "text",
                       "The value in its text form; of a reference, the path of an entity. Left "
                       "out to insert only a key." ) },
          Scenario::readText< Set, &Set::value > } } );
   return table;
}

void write( Kiv::Attribute const & attribute, Kiv::Entity & entity, Set const & what ) {
   try {
      attribute.textIs( entity, what.at.key, what.value );
   } catch ( Quelm::TextError const & error ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() + "' is not set: " + error.what() +
                                ( what.value.empty() && !attribute.valueType().empty()
                                     ? "; give its value with 'value'"
                                     : "" ) );
   }
}

}  // namespace

std::vector< WordList > Set::vocabulary() {
   return { setTable().list() };
}

void Set::read( Reading & reading, Value const & words ) {
   readMapping( reading, words, setTable(), *this );
}

std::string Set::description() const {
   return "set " + textOf( at ) + ( value.empty() ? "" : " to " + value );
}

void Set::follow( Scenario::Course & course ) const {
   course.mayChange( at.entity );
}

void Set::change( Context const & context, int line ) const {
   auto const & finder = context.evidence.finder;
   auto const entity = finder.entity( at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, at.attribute );
   checkKey( *entity, attribute, at.key );
   if ( attribute.kind() == Kiv::Attribute::Kind::Reference ) {
      if ( value.empty() ) {
         throw Quelm::AccessError( "attribute '" + attribute.name() +
                                   "' refers to an entity; give its path with 'value'" );
      }
      attribute.entityIs( *entity,
                          finder.entity( StateDatabase::EntityPath::fromString( value ) ) );
   } else {
      write( attribute, *entity, *this );
   }
   tellEmptyKey( context, at, line );
}

}  // namespace Steps
