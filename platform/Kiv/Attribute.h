// One row of an introspection table: the generic interface to one attribute, of an entity or of a
// value.
//
// Everything here is text: keys, values, arguments and results in the text forms of Quelm/Text.h,
// so that state files, `show`, dumps and scenario steps work on every entity without knowing its
// class. The generic interface uses the same accessors as a handler's own code: same factories,
// same notifications.
//
// Failures: an operation that a kind of attribute does not offer (a key on a plain value, writing a
// read-only one) throws Quelm::AccessError, a text that is not the type's form throws
// Quelm::TextError; the entity is unchanged in both cases.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Kiv/Change.h>
#include <Quelm/Ptr.h>

namespace Kiv {

class Entity;

class Attribute {
 public:
   enum class Kind {
      Key,         // fixed at construction
      Value,       // one value
      Reference,   // one reference to another entity
      Set,         // keys only
      Collection,  // keys with values
      Members,     // keys with entities
      Operation,   // callable
   };

   struct Declaration {
      std::string name;
      Kind kind;
      std::string keyType;    // empty where there is no key; an operation's parameter types
      std::string valueType;  // empty for a set; an operation's result type
      bool isWritable;        // through this interface
   };

   explicit Attribute( Declaration declaration ) : declaration_( std::move( declaration ) ) {}
   Attribute( Attribute const & ) = delete;
   Attribute & operator=( Attribute const & ) = delete;
   virtual ~Attribute() = default;

   std::string const & name() const { return declaration_.name; }
   Kind kind() const { return declaration_.kind; }
   std::string const & keyType() const { return declaration_.keyType; }
   std::string const & valueType() const { return declaration_.valueType; }
   bool isWritable() const { return declaration_.isWritable; }
   bool isKeyed() const;

   // The keys present, in iteration order.
   virtual std::vector< std::string > keys( Entity const & entity ) const;
   // Whether `key` is present.
   virtual bool has( Entity const & entity, std::string_view key ) const;
   // The value; `key` is ignored by attributes without keys. The default's text when absent.
   virtual std::string text( Entity const & entity, std::string_view key ) const;
   // Sets or inserts. For members, creates the member of that key, and `value` must be empty.
   virtual void textIs( Entity & entity, std::string_view key, std::string_view value ) const;
   // Removes the member of that key; without effect when there is none. Empties a reference.
   virtual void del( Entity & entity, std::string_view key ) const;
   // The entity referred to, or an empty reference.
   virtual Quelm::Ptr< Entity > entity( Entity const & entity, std::string_view key ) const;
   // Refers to `target` from now on; AccessError when it is of another type.
   virtual void entityIs( Entity & entity, Quelm::Ptr< Entity > const & target ) const;
   // Calls the operation; the result's text, empty for operations without result.
   virtual std::string call( Entity & entity, std::vector< std::string > const & arguments ) const;
   // The number of arguments of an operation.
   virtual std::size_t arity() const { return 0; }

   // --- Attributes of value types; a value is its text form
   // The attribute's text within `value`.
   virtual std::string textIn( std::string_view value ) const;
   // `value` with the attribute set to `text`.
   virtual std::string valueWith( std::string_view value, std::string_view text ) const;

   // The texts of a change's key and values; empty text where there is none.
   virtual std::string keyTextOf( TypedPointer const & key ) const;
   virtual std::string valueTextOf( TypedPointer const & value ) const;

 protected:
   [[noreturn]] void refuse( std::string const & what ) const;

 private:
   Declaration declaration_;
};

// The name of a kind, for people: "value", "collection", ...
std::string_view kindName( Attribute::Kind kind );

}  // namespace Kiv
