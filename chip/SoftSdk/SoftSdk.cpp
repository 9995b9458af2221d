#include <SoftSdk/SoftSdk.h>

#include <FieldProcessor/Gport.h>
#include <SoftSdk/PortBitmap.h>

namespace Chip {

namespace {

using Shim::Call;
using Shim::FieldOperation;

constexpr U32 kExactMatch = BCM_FIELD_EXACT_MATCH_MASK;

// --- Qualifiers. The values of a call: a module id and a port, each with its mask; data and mask;
// or a value alone.

Match matchOf( QualifierRow const & row, Shim::CallValues const & values ) {
   if ( row.hasModule ) {
      return { values[ 2 ], values[ 3 ], values[ 0 ], values[ 1 ] };
   }
   if ( row.hasMask ) {
      return { values[ 0 ], values[ 1 ] };
   }
   return { values[ 0 ], values[ 0 ] == row.any ? 0 : kExactMatch };
}

void addValues( QualifierRow const & row, Match const & match, Shim::CallValues & values ) {
   if ( row.hasModule ) {
      values.add( match.modId );
      values.add( match.modIdMask );
   }
   values.add( match.data );
   if ( row.hasMask ) {
      values.add( match.mask );
   }
}

ResultCode qualify( Entry & entry, QualifierRow const & row, Call const & call ) {
   Match const match = matchOf( row, call.values );
   bool const isPossible = match.data >= row.lowest && match.data <= row.highest;
   return isPossible ? entry.qualify( row.qualifier, match ) : ResultCode::BadValue;
}

ResultCode readBack( Entry const & entry, QualifierRow const & row, Call & call ) {
   Match match;
   ResultCode const code = entry.readBack( row.qualifier, match );
   if ( code == ResultCode::None ) {
      addValues( row, match, call.values );
   }
   return code;
}

ResultCode makeQualifierCall( Entry & entry, Call & call ) {
   for ( QualifierRow const & row : kQualifierTable ) {
      if ( row.qualify == call.operation ) {
         return qualify( entry, row, call );
      }
      if ( row.get == call.operation ) {
         return readBack( entry, row, call );
      }
   }
   return ResultCode::Unsupported;
}

// --- Actions. The values of a call: the SDK's number of the action, and its two parameters.

ResultCode addAction( Entry & entry, Call const & call ) {
   std::optional< Action > const action = actionOf( call.values[ 0 ] );
   ActionParameters const parameters{ call.values[ 1 ], call.values[ 2 ] };
   bool const isPossible = action && parameters.param0 >= rowOf( *action ).lowest &&
                           parameters.param0 <= rowOf( *action ).highest;
   return isPossible ? entry.actionAdd( *action, parameters ) : ResultCode::BadValue;
}

ResultCode readBackAction( Entry const & entry, Call & call ) {
   std::optional< Action > const action = actionOf( call.values[ 0 ] );
   ActionParameters parameters;
   ResultCode const code = action ? entry.readBack( *action, parameters ) : ResultCode::BadValue;
   if ( code == ResultCode::None ) {
      call.values.add( parameters.param0 );
      call.values.add( parameters.param1 );
   }
   return code;
}

ResultCode makeOn( Entry & entry, Call & call ) {
   switch ( call.operation ) {
   case FieldOperation::AddAction: return addAction( entry, call );
   case FieldOperation::GetAction: return readBackAction( entry, call );
   default: return makeQualifierCall( entry, call );
   }
}

}  // namespace

S32 SoftSdk::make( Shim::Call & call ) {
   Unit * const unit = units_.unit( call.unit );
   if ( !unit ) {
      return codeOf( ResultCode::UnknownUnit );
   }
   Entry * const entry = unit->entry( call.entry );
   return codeOf( entry ? makeOn( *entry, call ) : ResultCode::UnknownEntry );
}

U32 SoftSdk::vxlanGport( U16 vpIndex ) const {
   return vxlanGportOf( vpIndex );
}

void SoftSdk::pbmpClear( _shr_pbmp & pbmp ) const {
   pbmp = {};
}

bool SoftSdk::pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const {
   return a.words == b.words;
}

U32 SoftSdk::pbmpCount( _shr_pbmp const & pbmp ) const {
   return bitmapOf( pbmp ).count();
}

}  // namespace Chip
