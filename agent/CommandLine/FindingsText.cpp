#include <CommandLine/FindingsText.h>

#include <fmt/format.h>

#include <Exploring/Catalogue.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

namespace CommandLine {

namespace {

using Exploring::Findings;
using Story::Json;

// One below the other.
std::string textOf( std::vector< std::string > const & steps ) {
   std::string text = steps.empty() ? "      (the start itself)\n" : "";
   for ( std::string const & step : steps ) {
      text += "      - " + Text::printable( step ) + '\n';
   }
   return text;
}

}  // namespace

void print( Explored const & explored, Exploring::KnownLimits const & limits, std::ostream & out ) {
   Findings const & findings = explored.findings;
   out << fmt::format( "{}: {}", Text::printable( explored.name ),
                       Story::counted( findings.counts.sequences, explored.thing ) );
   out << ( explored.what.contains( "standFor" )
               ? fmt::format( ", which stand for {}; {} more changed nothing; {}\n",
                              findings.counts.standFor, findings.counts.without,
                              Story::counted( findings.counts.frames, "frame" ) )
               : "\n" );
   for ( auto const & [ key, found ] : findings.all ) {
      std::string const scenario = explored.scenarioOf( found.shortest );
      std::string const calls =
         found.calls == 0 ? "" : ", for at most " + Story::counted( found.calls, "call" );
      char const * const shortest = found.calls == 0 ? "the shortest" : "the shortest with so many";
      out << fmt::format( "\n{}\n   in {}{}; {}{}:\n{}",
                          Text::printable( Exploring::lineOf( key ) ),
                          Story::counted( found.sequences, explored.thing ), calls, shortest,
                          scenario.empty() ? "" : ", in front of " + Text::printable( scenario ),
                          textOf( explored.stepsOf( found.shortest ) ) );
      for ( std::string const & one : limits.showing( key ) ) {
         out << "   shown by " << Text::printable( one ) << '\n';
      }
   }
   if ( findings.counts.unnamed != 0 ) {
      out << fmt::format( "\n{} more end in further ways; there was no room for their names\n",
                          findings.counts.unnamed );
   }
}

Json jsonOf( Explored const & explored, Exploring::KnownLimits const & limits ) {
   Json found = Json::array();
   for ( auto const & [ key, one ] : explored.findings.all ) {
      std::string const scenario = explored.scenarioOf( one.shortest );
      found.push_back( { { "kind", nameOf( key.kind ) },
                         { "what", key.what },
                         { explored.thing + 's', one.sequences },
                         { "calls", one.calls == 0 ? Json() : Json( one.calls ) },
                         { "shortest", explored.stepsOf( one.shortest ) },
                         { "scenario", scenario.empty() ? Json() : Json( scenario ) },
                         { "shownBy", limits.showing( key ) } } );
   }
   Json document = explored.what;
   document[ "unnamed" ] = explored.findings.counts.unnamed;
   document[ "findings" ] = std::move( found );
   return document;
}

}  // namespace CommandLine
