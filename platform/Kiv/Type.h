// The introspection table of a type, and the register of all types.
//
// Kiv::Type lists a type's attributes, those of its base first, each with its name, kind and types.
// It is built from the class declaration the first time it is asked for and lives as long as the
// module that defines it. Attribute identifiers are positions in it, from 1; overloads of an
// operation follow in a list of their own and have no identifier.
//
// The register knows every type of every loaded module by name: the entity types, and the value
// types that a module makes known (Kiv/ValueRows.h), which have no base and notify nobody. State
// loading creates entities through it, so that a new entity type needs no line of code there. A
// module adds its types when it is loaded, before anything else that it registers, and takes them
// out when it is unloaded, after everything else; both happen on the loading thread.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <Kiv/Attribute.h>
#include <Quelm/Lines.h>

namespace Kiv {

class Type {
 public:
   using Attributes = std::vector< std::unique_ptr< Attribute const > >;
   using Create = std::function< Quelm::Ptr< Entity >( std::string const & name ) >;

   Type( std::string name, Type const * base );

   std::string const & name() const { return name_; }
   Type const * base() const { return base_; }

   // All attributes in identifier order, those of the bases included.
   std::vector< Attribute const * > const & attributes() const { return all_; }
   // The attribute with identifier `id`; a failed assertion when there is none.
   Attribute const & attribute( AttributeId id ) const;
   // The attribute of that name, or nullptr.
   Attribute const * find( std::string_view attribute ) const;
   // The operation of that name that takes `arguments` arguments, or nullptr.
   Attribute const * findOperation( std::string_view operation, std::size_t arguments ) const;

   // Creates an entity of this type under a name. Empty for types that need more than a name.
   Create const & create() const { return create_; }

   // --- for KIV_DEFINE and KIV_DEFINE_VALUE only
   void attributeNew( std::unique_ptr< Attribute const > attribute );
   void overloadNew( std::unique_ptr< Attribute const > overload );
   void createIs( Create create ) { create_ = std::move( create ); }

 private:
   std::string name_;
   Type const * base_;
   Attributes own_;
   Attributes overloads_;
   std::vector< Attribute const * > all_;
   Create create_;
};

// The type of that name among the loaded modules', or nullptr.
Type const * typeNamed( std::string_view name );
// All types of the loaded modules, by name.
std::vector< Type const * > types();

// Keeps a type in the register as long as the module lives that holds this object.
class TypeRegistration {
 public:
   explicit TypeRegistration( Type const & type );
   TypeRegistration( TypeRegistration const & ) = delete;
   TypeRegistration & operator=( TypeRegistration const & ) = delete;
   ~TypeRegistration();

 private:
   Type const & type_;
};

}  // namespace Kiv
