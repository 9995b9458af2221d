#include <Steps/Dump.h>

#include <Scenario/AttributeAt.h>
#include <Scenario/Shape.h>
#include <StateDatabase/Tree.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

void dumpRules( Context const & context ) {
   context.observer.onEvent( Story::RulesDumped{ Chip::rulesOf( context.board.units() ) } );
}

void dumpEntity( Context const & context, StateDatabase::EntityPath const & path ) {
   StateDatabase::Finder const & finder = context.evidence.finder;
   context.observer.onEvent( Story::EntityDumped{
      path.stringValue(),
      StateDatabase::treeOf( path.stringValue(), *finder.entity( path ), finder.roots() ) } );
}

}  // namespace

std::string Dump::shape() {
   namespace Shape = Scenario::Shape;
   return Shape::anyOf( { Shape::constant( "rules" ), Shape::of( "path" ) },
                        "Shows the rules in the chips, or an entity." );
}

void Dump::read( Reading & reading, Value const & value ) {
   if ( !value.node.IsScalar() || value.node.Scalar() != "rules" ) {
      readPath( reading, value, entity.emplace() );
   }
}

std::string Dump::description() const {
   return "dump " + ( entity ? entity->stringValue() : "rules" );
}

void Dump::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] {
      if ( entity ) {
         dumpEntity( context, *entity );
      } else {
         dumpRules( context );
      }
   } );
}

}  // namespace Steps
