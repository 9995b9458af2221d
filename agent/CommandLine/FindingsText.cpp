#include <CommandLine/FindingsText.h>

#include <fmt/format.h>

#include <Exploring/Catalogue.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>

namespace CommandLine {

namespace {

using Exploring::Exploration;
using Exploring::Findings;
using Exploring::Sequence;
using Story::Json;

// The events, one below the other.
std::string textOf( Exploration const & exploration, Sequence const & sequence ) {
   std::string text = sequence.empty() ? "      (the start itself)\n" : "";
   for ( U16 const event : sequence ) {
      text += "      - " + exploration.text( event ) + '\n';
   }
   return text;
}

// The scenarios that show the finding.
std::vector< std::string > shownBy( Exploring::Key const & key,
                                    Exploring::KnownLimits const & limits ) {
   auto const found = limits.find( key );
   return found == limits.end() ? std::vector< std::string >()
                                : std::vector( found->second.begin(), found->second.end() );
}

}  // namespace

void print( Exploration const & exploration, Findings const & findings,
            Exploring::KnownLimits const & limits, std::ostream & out ) {
   out << fmt::format( "{}: {}, which stand for {}; {} more changed nothing\n", exploration.name(),
                       Story::counted( findings.counts.sequences, "sequence" ),
                       findings.counts.standFor, findings.counts.without );
   for ( auto const & [ key, found ] : findings.all ) {
      out << fmt::format( "\n{}\n   in {}; the shortest:\n{}", Exploring::lineOf( key ),
                          Story::counted( found.sequences, "sequence" ),
                          textOf( exploration, found.shortest ) );
      for ( std::string const & scenario : shownBy( key, limits ) ) {
         out << "   shown by " << scenario << '\n';
      }
   }
   if ( findings.counts.unnamed != 0 ) {
      out << fmt::format( "\n{} more end in further ways; there was no room for their names\n",
                          findings.counts.unnamed );
   }
}

Json jsonOf( Exploration const & exploration, Findings const & findings,
             Exploring::KnownLimits const & limits ) {
   Json found = Json::array();
   for ( auto const & [ key, one ] : findings.all ) {
      Json steps = Json::array();
      for ( U16 const event : one.shortest ) {
         steps.push_back( exploration.text( event ) );
      }
      found.push_back( { { "kind", nameOf( key.kind ) },
                         { "what", key.what },
                         { "sequences", one.sequences },
                         { "shortest", std::move( steps ) },
                         { "shownBy", shownBy( key, limits ) } } );
   }
   return { { "exploration", exploration.name() },
            { "file", exploration.file().string() },
            { "sequences", findings.counts.sequences },
            { "standFor", findings.counts.standFor },
            { "withoutEffect", findings.counts.without },
            { "unnamed", findings.counts.unnamed },
            { "findings", std::move( found ) } };
}

}  // namespace CommandLine
