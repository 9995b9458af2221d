#include <Run.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include <Rules/Rule.h>

namespace Run {

namespace {

using Json = nlohmann::json;

std::string outputOf( std::string const & command ) {
   std::unique_ptr< FILE, int ( * )( FILE * ) > const pipe( popen( command.c_str(), "r" ), pclose );
   if ( !pipe ) {
      throw std::runtime_error( "cannot run " + command );
   }
   std::string text;
   std::array< char, 65536 > some{};
   while ( std::size_t const size = fread( some.data(), 1, some.size(), pipe.get() ) ) {
      text.append( some.data(), size );
   }
   return text;
}

// VORNAL_TEST_PLUGIN names another build of the plug-in.
std::string commandOn( std::filesystem::path const & scenario ) {
   char const * const plugIn = std::getenv( "VORNAL_TEST_PLUGIN" );
   return std::string( "exec " VORNAL_BINARY_DIR "/vornal run --json " ) +
          ( plugIn ? "--plugin '" + std::string( plugIn ) + "' " : "" ) + "'" + scenario.string() +
          "' 2>/dev/null";
}

std::string textOr( Json const & value, char const * other = "" ) {
   return value.is_string() ? value.get< std::string >() : other;
}

// Numbers in decimal, ports with blanks between them.
std::string textOf( Json const & value ) {
   if ( value.is_array() ) {
      std::string text;
      for ( Json const & one : value ) {
         text += ( text.empty() ? "" : " " ) + textOf( one );
      }
      return text;
   }
   return value.is_string() ? value.get< std::string >() : value.dump();
}

// --- Rules

Reference::Match matchOf( Json const & given ) {
   return { given.at( "data" ), given.at( "mask" ) };
}

void take( std::string const & name, Json const & match, Reference::Content & content ) {
   if ( name == "DstPort" ) {
      content.qualifiers[ "DstPort module" ] = matchOf( match.at( "modId" ) );
      content.qualifiers[ name ] = matchOf( match.at( "port" ) );
   } else {
      content.qualifiers[ name ] = matchOf( match );
   }
}

Reference::Rule ruleOf( Json const & given ) {
   bool const isIngress = given.at( "group" ) == 157;
   Reference::Content content;
   for ( auto const & [ name, match ] : given.at( "qualifiers" ).items() ) {
      take( name, match, content );
   }
   for ( auto const & [ name, action ] : given.at( "actions" ).items() ) {
      auto & numbers = content.actions[ name ];
      if ( action.contains( "ports" ) ) {
         numbers = action.at( "ports" ).get< std::set< unsigned > >();
      } else if ( action.contains( "data" ) ) {
         numbers = { action.at( "data" ).get< unsigned >() };
      }
   }
   if ( !given.at( "priority" ).is_null() ) {
      content.priority = given.at( "priority" );
   }
   Reference::Rule rule{ given.at( "unit" ),
                         isIngress ? Reference::Group::ingress : Reference::Group::egress,
                         given.at( "name" ), content };
   if ( given.at( "written" ) ) {
      rule.written = content;
   }
   return rule;
}

// --- Frames

Place placeOf( Json const & given ) {
   Place place;
   place.intf = textOr( given.at( "interface" ) );
   place.vtep = textOr( given.at( "vtep" ) );
   if ( given.at( "unit" ).is_number() ) {
      place.unit = given.at( "unit" ).get< unsigned >();
      place.port = given.at( "port" );
   }
   place.verdict = given.at( "verdict" );
   return place;
}

Frame frameOf( Json const & given ) {
   Frame frame;
   frame.number = given.at( "number" );
   frame.dropReason = textOr( given.at( "dropReason" ) );
   frame.frame.arrival = Reference::Interface( textOr( given.at( "arrival" ) ) );
   frame.frame.kind = textOr( given.at( "kind" ) );
   if ( given.at( "outer" ).is_object() ) {
      frame.frame.sender = Reference::Vtep( given.at( "outer" ).at( "source" ) );
   }
   if ( given.at( "inner" ).is_object() ) {
      frame.frame.vlan = given.at( "inner" ).at( "vlan" );
   }
   if ( given.at( "vni" ).is_number() ) {
      frame.frame.vni = given.at( "vni" );
   }
   for ( Json const & place : given.at( "ports" ) ) {
      frame.places.push_back( placeOf( place ) );
   }
   return frame;
}

// --- Steps

// Follows the document from step to step.
class Reader {
 public:
   explicit Reader( std::set< std::string > requests ) : requests_( std::move( requests ) ) {}

   Step step( Json const & given ) {
      Step step;
      step.text = given.at( "text" );
      for ( Json const & call : given.at( "hardwareCalls" ) ) {
         take( call, step );
      }
      takeRules( given );
      for ( auto const & [ key, text ] : rules_ ) {
         step.rules.insert( text );
      }
      for ( Json const & change : given.at( "changes" ) ) {
         takeChange( change, step );
      }
      step.requests = requests_;
      step.pass = textOr( given.at( "pluginPass" ) );
      return step;
   }

 private:
   // An entry's name stands in place of its id.
   void take( Json const & given, Step & step ) {
      std::string const operation = given.at( "operation" );
      std::pair< unsigned, unsigned > const entry{ given.at( "unit" ), given.at( "entry" ) };
      if ( operation == "getEntry" && entry.second != 0 ) {
         names_[ entry ] = given.at( "values" ).at( "name" );
      }
      Reference::Call call{ operation, entry.first, entry.second == 0 ? "" : names_[ entry ] };
      for ( auto const & [ name, value ] : given.at( "values" ).items() ) {
         call.values[ name ] = textOf( value );
      }
      if ( given.at( "returnCode" ).is_number() ) {
         call.code = given.at( "returnCode" );
      }
      step.calls.push_back( call.text() );
   }

   void takeRules( Json const & given ) {
      for ( Json const & rule : given.at( "rulesRemoved" ) ) {
         rules_.erase( keyOf( rule ) );
      }
      for ( Json const & rule : given.at( "rulesAdded" ) ) {
         rules_[ keyOf( rule ) ] = ruleOf( rule ).text();
      }
      for ( Json const & change : given.at( "rulesChanged" ) ) {
         rules_[ keyOf( change.at( "after" ) ) ] = ruleOf( change.at( "after" ) ).text();
      }
   }

   static std::string keyOf( Json const & rule ) {
      return rule.at( "unit" ).dump() + "/" + rule.at( "id" ).dump();
   }

   void takeChange( Json const & change, Step & step ) {
      std::string const path = change.at( "path" );
      if ( change.at( "attribute" ) != "remoteESPeerVtep" ) {
         return;
      }
      std::string const vtep = change.at( "key" );
      Json const & to = change.at( "to" );
      if ( path.find( "/i2eclassid/config/" ) != std::string::npos ) {
         to.is_null() ? void( requests_.erase( vtep ) ) : void( requests_.insert( vtep ) );
      } else if ( to.is_null() ) {
         step.grants.emplace_back( Reference::GrantGoes{ Reference::Vtep( vtep ) } );
      } else {
         auto const id = static_cast< unsigned >( std::stoul( textOf( to ) ) );
         step.grants.emplace_back( Reference::GrantIs{ Reference::Vtep( vtep ), id } );
      }
   }

   std::set< std::string > requests_;
   std::map< std::pair< unsigned, unsigned >, std::string > names_;  // by unit and entry
   std::map< std::string, std::string > rules_;
};

std::optional< Stopped > stopOf( Json const & document ) {
   if ( document.at( "end" ) != "stopped" ) {
      return std::nullopt;
   }
   Stopped stopped;
   stopped.step = document.at( "step" );
   if ( document.at( "assertion" ).is_object() ) {
      stopped.expression = document.at( "assertion" ).at( "expression" );
      stopped.function = document.at( "assertion" ).at( "function" );
   }
   Json const & output = document.at( "stop" ).at( "output" );
   stopped.output = output.empty() ? "" : output.back().get< std::string >();
   return stopped;
}

}  // namespace

Document of( std::filesystem::path const & scenario,
             std::set< std::string > const & requestsBefore ) {
   std::string const text = outputOf( commandOn( scenario ) );
   if ( text.empty() ) {
      throw std::runtime_error( "no document from " + scenario.string() );
   }
   return in( text, requestsBefore );
}

Document in( std::string const & text, std::set< std::string > const & requestsBefore ) {
   Json const given = Json::parse( text, nullptr, false );
   if ( !given.is_object() ) {
      throw std::runtime_error( "this is no document of a run: " + text );
   }
   Document document;
   Reader reader( requestsBefore );
   for ( Json const & step : given.at( "steps" ) ) {
      document.steps.push_back( reader.step( step ) );
   }
   for ( Json const & frame : given.at( "frames" ) ) {
      document.steps.at( frame.at( "step" ) ).frames.push_back( frameOf( frame ) );
   }
   for ( Json const & line : given.at( "log" ) ) {
      document.steps.at( line.at( "step" ) ).log.push_back( line.at( "name" ) );
   }
   document.stop = stopOf( given );
   document.error = textOr( given.at( "error" ) );
   return document;
}

}  // namespace Run
