// Makes a scenario's document as short as it can be while something about it still holds.
//
// Each list and each mapping of the document is a row of elements that can be left out. The steps
// come first, then the document's own parts, then everything else from the outside inwards; and all
// that again, until nothing more can be left out. In the end, no single element of any list or
// mapping can be left out, and no two steps, unless there are very many.
//
// What a candidate leaves out may be needed elsewhere, so that it is no scenario at all. Whoever
// answers the question finds that out.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <Scenario/Yaml.h>
#include <Shrinking/Minimise.h>

namespace Shrinking {

// Documents that are made when they are looked at.
struct Candidates {
   std::size_t count = 0;
   std::function< Scenario::Yaml( std::size_t number ) > document;
};

// The number of the first candidate of which it still holds; nothing: of none.
using FirstThatHolds = std::function< std::optional< std::size_t >( Candidates const & ) >;

Scenario::Yaml shrunk( Scenario::Yaml const & document, FirstThatHolds const & firstThatHolds );

// What is in a scenario, by kind, in words: "3 steps, 1 VTEP, 1 segment, 2 interfaces, 1 unit".
std::string sizeOf( Scenario::Yaml const & document );

// --- The elements of documents

// A place in a document: the numbers of the parts that lead there.
using Place = std::vector< std::size_t >;

Scenario::Yaml const & at( Scenario::Yaml const & document, Place const & place );
// The lists and mappings with parts that are so deep in the document, in their order.
std::vector< Place > rowsAt( Scenario::Yaml const & document, std::size_t depth );
// The document with these parts alone at the place.
Scenario::Yaml withParts( Scenario::Yaml document, Place const & place, Kept const & kept );

}  // namespace Shrinking
