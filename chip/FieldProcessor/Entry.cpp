#include <FieldProcessor/Entry.h>

namespace Chip {

EntryContent & Entry::own( std::shared_ptr< EntryContent > & copy ) {
   if ( copy.use_count() > 1 ) {
      copy = std::make_shared< EntryContent >( *copy );
   }
   return *copy;
}

ResultCode Entry::qualify( Qualifier qualifier, Match const & match ) {
   if ( kindOf( qualifier ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   own( staged_ )[ qualifier ] = match;
   return ResultCode::None;
}

ResultCode Entry::actionAdd( Action action, ActionParameters const & parameters ) {
   if ( kindOf( action ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   if ( staged()[ action ] ) {
      return ResultCode::Exists;
   }
   own( staged_ )[ action ] = parameters;
   return ResultCode::None;
}

ResultCode Entry::actionUpdate( Action action, ActionParameters const & parameters ) {
   if ( kindOf( action ) != kind_ ) {
      return ResultCode::Unsupported;
   }
   if ( !staged()[ action ] ) {
      return ResultCode::NotFound;
   }
   own( staged_ )[ action ] = parameters;
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
