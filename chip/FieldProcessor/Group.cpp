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
   byId_[ id ] = entries_.try_emplace( entries_.end(), id, kind_, id, name );
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
   auto const found = byId_.find( id );
   if ( found == byId_.end() ) {
      return ResultCode::UnknownEntry;
   }
   Entry const & entry = found->second->second;
   if ( entry.written() ) {
      written_->remove( entry );
   }
   entries_.erase( found->second );
   byId_.erase( found );
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
   auto const found = byId_.find( id );
   return found == byId_.end() ? nullptr : &found->second->second;
}

Entry const * Group::entry( U32 id ) const {
   auto const found = byId_.find( id );
   return found == byId_.end() ? nullptr : &found->second->second;
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
