#include <Kiv/Attribute.h>

#include <Kiv/Entity.h>
#include <Quelm/Error.h>

namespace Kiv {

bool Attribute::isKeyed() const {
   return kind() == Kind::Set || kind() == Kind::Collection || kind() == Kind::Members;
}

std::vector< std::string > Attribute::keys( Entity const & ) const {
   refuse( "has no keys" );
}

bool Attribute::has( Entity const &, std::string_view ) const {
   refuse( "has no keys" );
}

std::string Attribute::text( Entity const &, std::string_view ) const {
   refuse( "has no value to read" );
}

void Attribute::textIs( Entity &, std::string_view, std::string_view ) const {
   refuse( "cannot be written" );
}

void Attribute::del( Entity &, std::string_view ) const {
   refuse( "has nothing to delete" );
}

Quelm::Ptr< Entity > Attribute::entity( Entity const &, std::string_view ) const {
   refuse( "does not refer to an entity" );
}

void Attribute::entityIs( Entity &, Quelm::Ptr< Entity > const & ) const {
   refuse( "cannot be made to refer to an entity" );
}

std::string Attribute::call( Entity &, std::vector< std::string > const & ) const {
   refuse( "cannot be called" );
}

std::string Attribute::textIn( std::string_view ) const {
   refuse( "belongs to an entity, not to a value" );
}

std::string Attribute::valueWith( std::string_view, std::string_view ) const {
   refuse( "belongs to an entity, not to a value" );
}

std::string Attribute::keyTextOf( TypedPointer const & ) const {
   return {};
}

std::string Attribute::valueTextOf( TypedPointer const & ) const {
   return {};
}

void Attribute::refuse( std::string const & what ) const {
   throw Quelm::AccessError( "attribute '" + name() + "' is " +
                             ( kind() == Kind::Operation ? "an " : "a " ) +
                             std::string( kindName( kind() ) ) + " and " + what );
}

std::string_view kindName( Attribute::Kind kind ) {
   switch ( kind ) {
   case Attribute::Kind::Key: return "key";
   case Attribute::Kind::Value: return "value";
   case Attribute::Kind::Reference: return "reference";
   case Attribute::Kind::Set: return "set";
   case Attribute::Kind::Collection: return "collection";
   case Attribute::Kind::Members: return "collection of entities";
   case Attribute::Kind::Operation: return "operation";
   }
   return {};
}

}  // namespace Kiv
