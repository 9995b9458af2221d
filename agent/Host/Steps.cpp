#include <Host/Steps.h>

#include <Host/InputError.h>
#include <Quelm/Error.h>
#include <Scenario/Description.h>

namespace Host {

namespace {

void checkKey( Kiv::Attribute const & attribute, std::string const & key ) {
   if ( !attribute.isKeyed() && !key.empty() ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() +
                                "' has no keys; leave the key out" );
   }
}

}  // namespace

std::string Steps::placeOf( int line ) const {
   return context_.file + ":" + std::to_string( line );
}

void Steps::turnNew( int line, std::function< void() > turn ) {
   context_.activity.turnNew( [ this, line, turn = std::move( turn ) ] {
      try {
         turn();
      } catch ( Quelm::Error const & error ) {
         throw InputError( placeOf( line ) + ": " + error.what() );
      }
   } );
}

void Steps::queue( Scenario::Step const & step ) {
   std::visit( [ & ]( auto const & action ) { queueAction( action, step.line ); }, step.action );
}

// --- What other agents write

void Steps::queuePublished( std::vector< Scenario::Change > const & changes ) {
   for ( Scenario::Change const & change : changes ) {
      turnNew( change.line, [ this, &change ] { context_.published.publish( change.what ); } );
   }
}

void Steps::queueAction( Scenario::Publish const & publish, int ) {
   queuePublished( publish.changes );
}

void Steps::queueAction( Scenario::Withdraw const & withdraw, int ) {
   for ( Scenario::Change const & change : withdraw.changes ) {
      turnNew( change.line, [ this, &change ] { context_.published.withdraw( change.what ); } );
   }
}

void Steps::queueAction( Scenario::Ready const & ready, int line ) {
   turnNew( line, [ this, &ready ] {
      auto const & points = context_.published.common()->sliceDependencyPoints();
      points->subAgentDependencyPoints()->readyIs( ready.point );
   } );
}

// --- The generic interface

void Steps::queueAction( Scenario::Set const & action, int line ) {
   turnNew( line, [ this, &action ] { set( action ); } );
}

void Steps::set( Scenario::Set const & action ) {
   auto const & finder = context_.evidence.finder;
   auto const entity = finder.entity( action.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, action.at.attribute );
   checkKey( attribute, action.at.key );
   if ( attribute.kind() == Kiv::Attribute::Kind::Reference ) {
      attribute.entityIs( *entity,
                          finder.entity( Scenario::EntityPath::fromString( action.value ) ) );
   } else {
      attribute.textIs( *entity, action.at.key, action.value );
   }
}

void Steps::queueAction( Scenario::Delete const & action, int line ) {
   turnNew( line, [ this, &action ] { remove( action ); } );
}

void Steps::remove( Scenario::Delete const & action ) {
   auto const entity = context_.evidence.finder.entity( action.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, action.at.attribute );
   checkKey( attribute, action.at.key );
   attribute.del( *entity, action.at.key );
}

void Steps::queueAction( Scenario::Call const & action, int line ) {
   turnNew( line, [ this, &action ] { call( action ); } );
}

void Steps::call( Scenario::Call const & action ) {
   auto const entity = context_.evidence.finder.entity( action.entity );
   Kiv::Type const & type = entity->typeData();
   auto const * const operation = type.findOperation( action.operation, action.arguments.size() );
   if ( !operation ) {
      throw Quelm::AccessError( "a " + type.name() + " has no operation '" + action.operation +
                                "' that takes " + std::to_string( action.arguments.size() ) +
                                " arguments" );
   }
   operation->call( *entity, action.arguments );
}

// --- Expectations

void Steps::queueAction( Scenario::Expect const & action, int ) {
   for ( Scenario::Expectation const & expectation : action.expectations ) {
      turnNew( expectation.line, [ this, &expectation ] { expect( expectation ); } );
   }
}

void Steps::expect( Scenario::Expectation const & expectation ) {
   Finding const finding = check( expectation.what, context_.evidence );
   context_.observer.onEvent( Story::ExpectationChecked{
      Scenario::description( expectation.what ), placeOf( expectation.line ), finding.isAsExpected,
      finding.isAsExpected ? std::string() : finding.found } );
}

}  // namespace Host
