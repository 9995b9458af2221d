#include <FieldProcessor/Group.h>

#include <algorithm>

namespace Chip {

Group::Group( Vornal::TcamGroupAssignment assignment, GroupKind kind, U32 capacity, EntryIds & ids,
              LookupEngine engine )
      : assignment_( assignment ),
        kind_( kind ),
        capacity_( capacity ),
        ids_( ids ),
        written_( lookupNew( engine ) ) {}

U32 Group::foreignIs( U32 count ) {
   foreign_ = std::min( count, capacity_ - used() );
   return foreign_;
}

U32 Group::entryNew( std::string const & name ) {
   if ( room() == 0 ) {
      return 0;
   }
   U32 const id = ids_.next();
   entries_.try_emplace( id, std::make_unique< Entry >( kind_, id, name ) );
   return id;
}

ResultCode Group::install( U32 id ) {
   Entry * const found = entry( id );
   if ( !found ) {
      return ResultCode::UnknownEntry;
   }
   write( *found );
   return ResultCode::None;
}

ResultCode Group::reinstall( U32 id ) {
   Entry * const found = entry( id );
   if ( !found ) {
      return ResultCode::UnknownEntry;
   }
   if ( !found->written() ) {
      return ResultCode::NotInstalled;
   }
   write( *found );
   return ResultCode::None;
}

ResultCode Group::release( U32 id ) {
   auto const found = entries_.find( id );
   if ( found == entries_.end() ) {
      return ResultCode::UnknownEntry;
   }
   if ( found->second->written() ) {
      written_->remove( *found->second );
   }
   entries_.erase( found );
   return ResultCode::None;
}

void Group::write( Entry & entry ) {
   if ( entry.written() ) {
      written_->remove( entry );
   }
   entry.write();
   written_->insert( entry );
}

Entry * Group::entry( U32 id ) {
   auto const found = entries_.find( id );
   return found == entries_.end() ? nullptr : found->second.get();
}

Entry const * Group::entry( U32 id ) const {
   auto const found = entries_.find( id );
   return found == entries_.end() ? nullptr : found->second.get();
}

std::vector< Entry const * > Group::entries() const {
   std::vector< Entry const * > all;
   all.reserve( entries_.size() );
   for ( auto const & [ id, entry ] : entries_ ) {
      all.push_back( entry.get() );
   }
   std::sort( all.begin(), all.end(), []( auto a, auto b ) { return a->id() < b->id(); } );
   return all;
}

Entry const * Group::lookup( IngressFields const & frame ) const {
   QUELM_ASSERT( kind_ == GroupKind::Ingress );
   return written_->find( keyFieldsOf( frame ) );
}

Entry const * Group::lookup( EgressFields const & frame ) const {
   QUELM_ASSERT( kind_ == GroupKind::Egress );
   return written_->find( keyFieldsOf( frame ) );
}

}  // namespace Chip
