#include <Drift/Drift.h>

namespace Chip {

template< typename Change > ResultCode Drift::rewrite( U32 id, Change change ) {
   Entry * const entry = group_.entry( id );
   if ( !entry ) {
      return ResultCode::UnknownEntry;
   }
   if ( !entry->written_ ) {
      return ResultCode::NotInstalled;
   }
   group_.written_->remove( *entry );
   ResultCode const code = change( Entry::own( entry->written_ ) );
   group_.written_->insert( *entry );
   return code;
}

template< typename Part, typename Change >
ResultCode Drift::rewritePart( U32 id, Part part, Change change ) {
   if ( kindOf( part ) != group_.kind() ) {
      return ResultCode::Unsupported;
   }
   return rewrite( id, [ & ]( EntryContent & written ) {
      if ( !written[ part ] ) {
         return ResultCode::NotFound;
      }
      change( written[ part ] );
      return ResultCode::None;
   } );
}

ResultCode Drift::dataFlips( U32 id, Qualifier qualifier, U32 bits ) {
   return rewritePart( id, qualifier, [ & ]( auto & match ) { match->data ^= bits; } );
}

ResultCode Drift::maskIs( U32 id, Qualifier qualifier, U32 mask ) {
   return rewritePart( id, qualifier, [ & ]( auto & match ) { match->mask = mask; } );
}

ResultCode Drift::numberFlips( U32 id, Action action, U32 bits ) {
   return rewritePart( id, action, [ & ]( auto & parameters ) { parameters->param0 ^= bits; } );
}

ResultCode Drift::egressMaskIs( U32 id, Brum::PerUnitBitmap const & ports ) {
   return rewritePart( id, Action::EgressMask,
                       [ & ]( auto & parameters ) { parameters->ports = ports; } );
}

ResultCode Drift::priorityIs( U32 id, std::optional< U32 > const & priority ) {
   return rewrite( id, [ & ]( EntryContent & written ) {
      written.priority = priority;
      return ResultCode::None;
   } );
}

ResultCode Drift::remove( U32 id, Qualifier qualifier ) {
   return rewritePart( id, qualifier, []( auto & match ) { match.reset(); } );
}

ResultCode Drift::remove( U32 id, Action action ) {
   return rewritePart( id, action, []( auto & parameters ) { parameters.reset(); } );
}

ResultCode Drift::gportsSwap( U32 id, U32 other ) {
   constexpr Qualifier gport = Qualifier::SrcVxlanGport;
   Match taken;
   Entry const * const giver = group_.entry( other );
   ResultCode const found = giver ? giver->readBack( gport, taken ) : ResultCode::UnknownEntry;
   if ( found != ResultCode::None ) {
      return found;
   }
   Match given;
   ResultCode const swapped =
      rewritePart( id, gport, [ & ]( auto & match ) { given = std::exchange( *match, taken ); } );
   return swapped == ResultCode::None
             ? rewritePart( other, gport, [ & ]( auto & match ) { match = given; } )
             : swapped;
}

ResultCode Drift::erase( U32 id ) {
   Entry * const entry = group_.entry( id );
   if ( !entry ) {
      return ResultCode::UnknownEntry;
   }
   if ( !entry->written_ ) {
      return ResultCode::NotInstalled;
   }
   group_.written_->remove( *entry );
   entry->written_.reset();
   return ResultCode::None;
}

U32 Drift::copy( U32 id ) {
   Entry const * const original = group_.entry( id );
   U32 const copied = original && original->written_ ? group_.entryNew( original->name() ) : 0;
   if ( Entry * const entry = group_.entry( copied ) ) {
      entry->staged_ = original->written_;
      group_.install( copied );
   }
   return copied;
}

}  // namespace Chip
