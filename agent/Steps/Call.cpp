#include <Steps/Call.h>

#include <fmt/format.h>

#include <Quelm/Error.h>
#include <Scenario/AttributeAt.h>
#include <Scenario/Course.h>
#include <Scenario/Shape.h>
#include <StateDatabase/TypeName.h>
#include <Steps/Context.h>
#include <Story/Wording.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

void readCallEntity( Reading & reading, Value const & value, Call & call ) {
   readPath( reading, value, call.entity );
}

void readArguments( Reading & reading, Value const & value, Call & call ) {
   for ( Value const & element : listOf( reading, value ) ) {
      call.arguments.push_back( stringOf( reading, element ).value_or( "" ) );
   }
}

Scenario::Table< Call > const & callTable() {
   static Scenario::Table< Call > const table{
      { "call", "Calls an operation of an entity." },
      { { { "entity", "entity: /shared/vornalCommon", Shape::of( "path" ) }, readCallEntity },
        { { "operation", "operation: intfPortDel", Shape::of( "text", "The operation's name." ) },
          Scenario::readText< Call, &Call::operation > },
        { { "arguments", "",
            Shape::listOf( Shape::of( "text" ),
                           "The arguments in their text forms; none if left out." ) },
          readArguments } }
   };
   return table;
}

// "; it has handleVerify (0 arguments)"
std::string operationsOf( Kiv::Type const & type ) {
   std::string known;
   for ( Kiv::Attribute const * const attribute : type.attributes() ) {
      if ( attribute->kind() == Kiv::Attribute::Kind::Operation ) {
         known += ( known.empty() ? "" : ", " ) + attribute->name() + " (" +
                  Story::counted( attribute->arity(), "argument" ) + ")";
      }
   }
   return known.empty() ? "; it has no operations" : "; it has " + known;
}

}  // namespace

std::vector< WordList > Call::vocabulary() {
   return { callTable().list() };
}

void Call::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, callTable(), *this );
}

std::string Call::description() const {
   std::string list;
   for ( std::string const & argument : arguments ) {
      list += ( list.empty() ? " " : ", " ) + argument;
   }
   return fmt::format( "call {} {}({}{}", entity.stringValue(), operation, list,
                       list.empty() ? ")" : " )" );
}

void Call::follow( Scenario::Course & course ) const {
   course.mayChange( entity );
}

void Call::change( Context const & context, int /*line*/ ) const {
   auto const called = context.evidence.finder.entity( entity );
   Kiv::Type const & type = called->typeData();
   auto const * const found = type.findOperation( operation, arguments.size() );
   if ( !found ) {
      throw Quelm::AccessError(
         StateDatabase::withArticle( type.name() ) + " has no operation '" + operation +
         "' that takes " + Story::counted( arguments.size(), "argument" ) + operationsOf( type ) );
   }
   found->call( *called, arguments );
}

}  // namespace Steps
