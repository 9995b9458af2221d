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
   out << ( explored.thing == kSequence
               ? fmt::format( ", which stand for {}; {} more changed nothing\n",
                              findings.counts.standFor, findings.counts.without )
               : "\n" );
   for ( auto const & [ key, found ] : findings.all ) {
      out << fmt::format( "\n{}\n   in {}; the shortest:\n{}",
                          Text::printable( Exploring::lineOf( key ) ),
                          Story::counted( found.sequences, explored.thing ),
                          textOf( explored.stepsOf( found.shortest ) ) );
      for ( std::string const & scenario : limits.showing( key ) ) {
         out << "   shown by " << Text::printable( scenario ) << '\n';
      }
   }
   if ( findings.counts.unnamed != 0 ) {
      out << fmt::format( "\n{} more end in further ways; there was no room for their names\n",
                          findings.counts.unnamed );
   }
}

Json jsonOf( Explored const & explored, Exploring::KnownLimits const & limits ) {
   Findings const & findings = explored.findings;
   Json found = Json::array();
   for ( auto const & [ key, one ] : findings.all ) {
      found.push_back( { { "kind", nameOf( key.kind ) },
                         { "what", key.what },
                         { "sequences", one.sequences },
                         { "shortest", explored.stepsOf( one.shortest ) },
                         { "shownBy", limits.showing( key ) } } );
   }
   return { { "exploration", explored.name },
            { "file", explored.file },
            { "sequences", findings.counts.sequences },
            { "standFor", findings.counts.standFor },
            { "withoutEffect", findings.counts.without },
            { "unnamed", findings.counts.unnamed },
            { "findings", std::move( found ) } };
}

}  // namespace CommandLine
