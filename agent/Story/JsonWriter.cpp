#include <Story/JsonWriter.h>

#include <Story/JsonForms.h>

namespace Story {

JsonWriter::JsonWriter( std::optional< U32 > step, std::size_t mostEntries )
      : step_( step ),
        document_( mostEntries, step ? Document::Frames::LeftOut : Document::Frames::Kept ) {}

void JsonWriter::onEvent( Event const & event ) {
   outcome_.onEvent( event );
   std::visit( [ this ]( auto const & what ) { take( what ); }, event );
}

void JsonWriter::write( std::ostream & out ) const {
   step_ ? writeStep( out ) : writeWhole( out );
}

void JsonWriter::writeWhole( std::ostream & out ) const {
   Json document = document_.json();
   document[ "end" ] = outcome_.endName();
   document[ "counters" ][ "framesDropped" ] = totals_.drops;
   document[ "counters" ][ "copies" ] = totals_.copies;
   for ( auto const & [ key, rule ] : rules_.rules() ) {
      document[ "rules" ].push_back( jsonOf( rule ) );
   }
   writeWithFrames( documentText( document ), out );
}

void JsonWriter::writeWithFrames( std::string_view text, std::ostream & out ) const {
   // In front of a name at this margin stand the names of the document, and no others.
   constexpr std::string_view kFrames = "\n   \"frames\": [";
   std::size_t const place = text.find( kFrames ) + kFrames.size();
   document_.frames().flush();
   out << text.substr( 0, place );
   document_.frames().writeTo( out );
   out << ( document_.frames().isEmpty() ? "" : "\n   " ) << text.substr( place ) << std::flush;
}

void JsonWriter::writeStep( std::ostream & out ) const {
   Json found;
   for ( Json const & step : document_.json()[ "steps" ] ) {
      found = step[ "number" ] == *step_ ? step : found;
   }
   out << documentText( found ) << std::flush;
}

void JsonWriter::take( BadInput const & event ) {
   endsEarly();
   event.addTo( document_ );
}

void JsonWriter::take( Stopped const & event ) {
   endsEarly();
   event.addTo( document_ );
   document_[ "stop" ][ "limits" ] = jsonOf( outcome_.limits() );
}

void JsonWriter::take( FrameForwarded const & event ) {
   event.addTo( document_ );
   totals_.add( event.frame );
}

// The step under way is the last one.
void JsonWriter::endsEarly() {
   if ( document_.hasStep() ) {
      ruleChanges();
      document_[ "step" ] = document_.step()[ "number" ];
   }
}

void JsonWriter::ruleChanges() {
   Chip::RuleChanges const changes = rules_.changes();
   Json & step = document_.step();
   for ( Chip::Rule const & rule : changes.added ) {
      step[ "rulesAdded" ].push_back( jsonOf( rule ) );
   }
   for ( Chip::RuleChange const & change : changes.changed ) {
      step[ "rulesChanged" ].push_back(
         { { "before", jsonOf( change.before ) }, { "after", jsonOf( change.after ) } } );
   }
   for ( Chip::Rule const & rule : changes.removed ) {
      step[ "rulesRemoved" ].push_back( jsonOf( rule ) );
   }
   document_.count( "rulesAdded", changes.added.size() );
   document_.count( "rulesChanged", changes.changed.size() );
   document_.count( "rulesRemoved", changes.removed.size() );
}

}  // namespace Story
