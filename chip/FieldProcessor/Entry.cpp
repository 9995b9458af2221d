#include <FieldProcessor/Entry.h>

namespace Chip {

ResultCode Entry::qualify( Qualifier qualifier, Match const & match ) {
   if ( kindOf( qualifier ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   staged_[ qualifier ] = match;
   return ResultCode::None;
}

ResultCode Entry::actionAdd( Action action, ActionParameters const & parameters ) {
   if ( kindOf( action ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   if ( staged_[ action ] ) {
      return ResultCode::Exists;
   }
   staged_[ action ] = parameters;
   return ResultCode::None;
}

ResultCode Entry::actionUpdate( Action action, ActionParameters const & parameters ) {
   if ( kindOf( action ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   if ( !staged_[ action ] ) {
      return ResultCode::NotFound;
   }
   staged_[ action ] = parameters;
   return ResultCode::None;
}

template< typename Part, typename Value >
ResultCode Entry::readPart( Part part, Value & value ) const {
   if ( kindOf( part ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   if ( !written_ || !( *written_ )[ part ] ) {
      return ResultCode::NotFound;
   }
   value = *( *written_ )[ part ];
   return ResultCode::None;
}

ResultCode Entry::readBack( Qualifier qualifier, Match & match ) const {
   return readPart( qualifier, match );
}

ResultCode Entry::readBack( Action action, ActionParameters & parameters ) const {
   return readPart( action, parameters );
}

}  // namespace Chip
