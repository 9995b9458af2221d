#include <Host/Steps.h>

#include <iostream>

#include <Host/DriftStep.h>
#include <Host/Verification.h>
#include <Quelm/Error.h>
#include <Scenario/Description.h>
#include <StateDatabase/Tree.h>
#include <StateDatabase/TypeName.h>
#include <Story/InputError.h>
#include <Story/Wording.h>

namespace Host {

namespace {

bool isEmptyKey( Kiv::Attribute const & attribute, std::string const & key ) {
   return attribute.isKeyed() && key.empty();
}

// A key that is left out is the empty one, where the keys have one.
void checkKey( Kiv::Entity & entity, Kiv::Attribute const & attribute, std::string const & key ) {
   try {
      static_cast< void >( isEmptyKey( attribute, key ) && attribute.has( entity, key ) );
   } catch ( Quelm::TextError const & ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() +
                                "' has keys; give the one that is meant by 'key'" );
   }
   if ( !attribute.isKeyed() && !key.empty() ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() +
                                "' has no keys; leave the key out" );
   }
}

void checkDeletable( Kiv::Entity const & entity, Kiv::Attribute const & attribute,
                     std::string const & key ) {
   if ( attribute.isKeyed() && !attribute.has( entity, key ) ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() + "' has no key '" + key +
                                "', so nothing can be deleted" );
   }
}

void write( Kiv::Attribute const & attribute, Kiv::Entity & entity, Scenario::Set const & what ) {
   try {
      attribute.textIs( entity, what.at.key, what.value );
   } catch ( Quelm::TextError const & error ) {
      throw Quelm::AccessError( "attribute '" + attribute.name() + "' is not set: " + error.what() +
                                ( what.value.empty() && !attribute.valueType().empty()
                                     ? "; give what it is to be by 'value'"
                                     : "" ) );
   }
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

// Nobody leaves out a key on purpose without wanting to be told.
void tellEmptyKey( StateDatabase::Finder const & finder, Scenario::AttributeAt const & at,
                   std::string const & place ) {
   auto const entity = finder.entity( at.entity );
   if ( isEmptyKey( StateDatabase::attributeOf( *entity, at.attribute ), at.key ) ) {
      std::cerr << place + ": 'key' is left out, so the entry of '" + at.attribute +
                      "' under the empty key is meant\n";
   }
}

}  // namespace

std::string Steps::placeOf( int line ) const {
   return context_.file + ":" + std::to_string( line );
}

template< typename Work > void Steps::at( int line, Work const & work ) const {
   try {
      work();
   } catch ( Quelm::Error const & error ) {
      throw Story::InputError( placeOf( line ) + ": " + error.what() );
   }
}

void Steps::turnNew( int line, std::function< void() > turn ) {
   context_.activity.turnNew( [ this, line, turn = std::move( turn ) ] { at( line, turn ); } );
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

void Steps::queueAction( Scenario::Replace const & replace, int ) {
   for ( auto const & [ what, line ] : replace.replacements ) {
      turnNew( line, [ this, &what = what ] { context_.published.replace( what ); } );
   }
}

void Steps::queueAction( Scenario::Ready const & ready, int line ) {
   turnNew( line, [ this, &ready ] { change( ready ); } );
}

// --- Several changes in one turn

void Steps::queueAction( Scenario::Turn const & turn, int line ) {
   turnNew( line, [ this, &turn ] {
      for ( Scenario::Turn::PlacedPart const & one : turn.parts ) {
         at( one.line, [ & ] {
            std::visit( [ this ]( auto const & action ) { change( action ); }, one.part );
         } );
      }
   } );
}

void Steps::change( Scenario::Ready const & ready ) {
   auto const & points = context_.published.common()->sliceDependencyPoints();
   points->subAgentDependencyPoints()->readyIs( ready.point );
}

void Steps::change( Scenario::Publish const & publish ) {
   for ( auto const & [ what, line ] : publish.changes ) {
      at( line, [ this, &what = what ] { context_.published.publish( what ); } );
   }
}

void Steps::change( Scenario::Withdraw const & withdraw ) {
   for ( auto const & [ what, line ] : withdraw.changes ) {
      at( line, [ this, &what = what ] { context_.published.withdraw( what ); } );
   }
}

void Steps::change( Scenario::Replace const & replace ) {
   for ( auto const & [ what, line ] : replace.replacements ) {
      at( line, [ this, &what = what ] { context_.published.replace( what ); } );
   }
}

// --- The generic interface

void Steps::queueAction( Scenario::Set const & action, int line ) {
   turnNew( line, [ this, &action, line ] {
      set( action );
      tellEmptyKey( context_.evidence.finder, action.at, placeOf( line ) );
   } );
}

void Steps::set( Scenario::Set const & action ) {
   auto const & finder = context_.evidence.finder;
   auto const entity = finder.entity( action.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, action.at.attribute );
   checkKey( *entity, attribute, action.at.key );
   if ( attribute.kind() == Kiv::Attribute::Kind::Reference ) {
      if ( action.value.empty() ) {
         throw Quelm::AccessError( "attribute '" + attribute.name() +
                                   "' refers to an entity; give its path by 'value'" );
      }
      attribute.entityIs( *entity,
                          finder.entity( StateDatabase::EntityPath::fromString( action.value ) ) );
   } else {
      write( attribute, *entity, action );
   }
}

void Steps::queueAction( Scenario::Delete const & action, int line ) {
   turnNew( line, [ this, &action, line ] {
      remove( action );
      tellEmptyKey( context_.evidence.finder, action.at, placeOf( line ) );
   } );
}

void Steps::remove( Scenario::Delete const & action ) {
   auto const entity = context_.evidence.finder.entity( action.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, action.at.attribute );
   checkKey( *entity, attribute, action.at.key );
   checkDeletable( *entity, attribute, action.at.key );
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
      throw Quelm::AccessError( StateDatabase::withArticle( type.name() ) + " has no operation '" +
                                action.operation + "' that takes " +
                                Story::counted( action.arguments.size(), "argument" ) +
                                operationsOf( type ) );
   }
   operation->call( *entity, action.arguments );
}

// --- Other users of the chip, and of the class ids

void Steps::queueAction( Scenario::ForeignEntries const & action, int line ) {
   turnNew( line, [ this, &action ] { occupy( action ); } );
}

void Steps::occupy( Scenario::ForeignEntries const & action ) {
   Vornal::TcamGroupAssignment const group = assignmentOf( action.group );
   auto const manager = context_.board.entryManager( group );
   for ( auto const & [ unit, chip ] : context_.board.units() ) {
      bool const isMeant = !action.unit || *action.unit == unit;
      if ( isMeant && chip.groups().contains( group ) ) {
         U32 const held = manager->foreignEntriesIs( unit, action.count );
         context_.observer.onEvent( Story::ForeignEntriesAre{ unit, group, action.count, held } );
      }
   }
}

void Steps::queueAction( Scenario::ClassIdAllocator const & action, int line ) {
   turnNew( line,
            [ this, &action ] { context_.published.allocator().isPausedIs( action.isPaused ); } );
}

// --- Frames

void Steps::queueAction( Scenario::Frame const & action, int line ) {
   turnNew( line, [ this, &action ] { context_.traffic.inject( action ); } );
}

void Steps::queueAction( Scenario::Capture const & action, int line ) {
   turnNew( line, [ this, &action ] { context_.traffic.inject( action ); } );
}

void Steps::queueAction( Scenario::DesignatedForwarder const & action, int line ) {
   turnNew( line, [ this, &action ] { context_.traffic.designatedIs( action ); } );
}

// --- Dumps

void Steps::queueAction( Scenario::Dump const & action, int line ) {
   turnNew( line, [ this, &action ] {
      std::visit( [ this ]( auto const & what ) { dump( what ); }, action.what );
   } );
}

void Steps::dump( StateDatabase::EntityPath const & path ) {
   StateDatabase::Finder const & finder = context_.evidence.finder;
   context_.observer.onEvent( Story::EntityDumped{
      path.stringValue(),
      StateDatabase::treeOf( path.stringValue(), *finder.entity( path ), finder.roots() ) } );
}

void Steps::dump( Scenario::Dump::Rules ) {
   context_.observer.onEvent( Story::RulesDumped{ Chip::rulesOf( context_.board.units() ) } );
}

// --- Verification

void Steps::queueAction( Scenario::Drift const & action, int line ) {
   turnNew( line,
            [ this, &action ] { drift( action, context_.board.units(), context_.reporter ); } );
}

void Steps::queueAction( Scenario::FailCall const & action, int line ) {
   turnNew( line, [ this, &action ] {
      context_.faults.faultNew( { action.number, action.code, action.operation } );
   } );
}

void Steps::queueVerification( Scenario::Verify how, int line ) {
   if ( how != Scenario::Verify::plugIn ) {
      turnNew( line, [ this ] { tellAudit( context_.evidence.auditor, context_.observer ); } );
   }
   if ( how != Scenario::Verify::audit ) {
      turnNew( line, [ this ] { runPluginPass( context_.evidence.finder, context_.observer ); } );
   }
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
