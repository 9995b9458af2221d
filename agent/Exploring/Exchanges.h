// The exchanges of words that are alike, and what they do to texts.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Scenario/Yaml.h>

namespace Exploring {

// Words that stand for one thing, as a VTEP's address and its virtual port.
using Names = std::vector< std::string >;
// Things that are alike; each has as many names.
using Alike = std::vector< Names >;

// By word, the word that takes its place.
using WordExchange = std::map< std::string, std::string >;

// Every way to exchange things with those that are like them, without the one that changes nothing.
std::vector< WordExchange > exchangesOf( std::vector< Alike > const & groups );

// The document with its words exchanged, as keys and as values, in one line and in one order: two
// documents that differ only in the order of their lists and mappings have the same text. A list of
// steps keeps its order.
std::string exchangedText( Scenario::Yaml const & document, WordExchange const & exchange );

}  // namespace Exploring
