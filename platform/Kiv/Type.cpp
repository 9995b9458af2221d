#include <Kiv/Type.h>

#include <algorithm>
#include <map>

#include <Kiv/Entity.h>
#include <Quelm/Assert.h>

namespace Kiv {

namespace {

std::map< std::string, Type const *, std::less<> > & registered() {
   static std::map< std::string, Type const *, std::less<> > types;
   return types;
}

}  // namespace

Type::Type( std::string name, Type const * base ) : name_( std::move( name ) ), base_( base ) {
   if ( base_ ) {
      all_ = base_->all_;
   }
}

Attribute const & Type::attribute( AttributeId id ) const {
   QUELM_ASSERT( id >= 1 && id <= all_.size() );
   return *all_[ id - 1 ];
}

Attribute const * Type::find( std::string_view attribute ) const {
   auto const found = std::find_if( all_.begin(), all_.end(), [ & ]( Attribute const * candidate ) {
      return candidate->name() == attribute;
   } );
   return found == all_.end() ? nullptr : *found;
}

Attribute const * Type::findOperation( std::string_view operation, std::size_t arguments ) const {
   auto const fits = [ & ]( Attribute const & candidate ) {
      return candidate.kind() == Attribute::Kind::Operation && candidate.name() == operation &&
             candidate.arity() == arguments;
   };
   for ( Attribute const * candidate : all_ ) {
      if ( fits( *candidate ) ) {
         return candidate;
      }
   }
   for ( auto const & candidate : overloads_ ) {
      if ( fits( *candidate ) ) {
         return candidate.get();
      }
   }
   return base_ ? base_->findOperation( operation, arguments ) : nullptr;
}

void Type::attributeNew( std::unique_ptr< Attribute const > attribute ) {
   all_.push_back( attribute.get() );
   own_.push_back( std::move( attribute ) );
}

void Type::overloadNew( std::unique_ptr< Attribute const > overload ) {
   overloads_.push_back( std::move( overload ) );
}

Type const * typeNamed( std::string_view name ) {
   auto const found = registered().find( name );
   return found == registered().end() ? nullptr : found->second;
}

std::vector< Type const * > types() {
   std::vector< Type const * > result;
   for ( auto const & [ name, type ] : registered() ) {
      result.push_back( type );
   }
   return result;
}

TypeRegistration::TypeRegistration( Type const & type ) : type_( type ) {
   registered()[ type.name() ] = &type;
}

TypeRegistration::~TypeRegistration() {
   registered().erase( type_.name() );
}

Type const & Entity::kivType() {
   static Type const type( "Kiv::Entity", nullptr );
   return type;
}

}  // namespace Kiv
