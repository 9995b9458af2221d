// The parts of a scenario, each read by a function of the same shape; one source file per subject.
//
// | source           | reads                                                     |
// |------------------|-----------------------------------------------------------|
// | Reader.cpp       | the scenario itself, and those based on another           |
// | Switch.cpp       | `switch`, less the interfaces                             |
// | Published.cpp    | interfaces, port channels, segments, VTEPs, tunnel        |
// |                  | interfaces: before the plug-in is loaded and in steps     |
// | Steps.cpp        | `steps`                                                   |
// | Expectations.cpp | what the step `expect` holds                              |
// | Forwarding.cpp   | `forwarding`                                              |
// | Frames.cpp       | frames that are injected, and what is expected of them    |
// | Rules.cpp        | which rules are expected, what others hold of their group |
// | Drift.cpp        | what changes in the chip behind the plug-in's back        |
// | Replace.cpp      | whole entities that take the place of others              |
// | FailCall.cpp     | calls of the chip that fail                               |
#pragma once

#include <optional>
#include <vector>

#include <Scenario/Scenario.h>
#include <Scenario/Values.h>
#include <Scenario/Words.h>

namespace Scenario {

void readSwitch( Reading & reading, Value const & value, Model & model );
Choices< Variant > const & variants();
Choices< TcamGroup > const & tcamGroups();

// Each appends to the changes.
void readInterfaces( Reading & reading, Value const & value, std::vector< Change > & changes );
void readPortChannels( Reading & reading, Value const & value, std::vector< Change > & changes );
void readEvpn( Reading & reading, Value const & value, std::vector< Change > & changes );
void readPublish( Reading & reading, Value const & value, std::vector< Change > & changes );
void readWithdraw( Reading & reading, Value const & value, std::vector< Change > & changes );
// Segments and tunnel interfaces, each followed by what it holds.
void readReplaced( Reading & reading, Value const & value, std::vector< Change > & changes );

// A step, and the variant that it is for unless it is for both.
struct StepOf {
   Step step;
   std::optional< Variant > onlyOn;
};
void readSteps( Reading & reading, Value const & value, std::vector< StepOf > & steps );

void readExpect( Reading & reading, Value const & value,
                 std::vector< Expectation > & expectations );

void readRules( Reading & reading, Value const & value, RulesLike & rules );
void readForeignEntries( Reading & reading, Value const & value, ForeignEntries & foreign );

// The address of a remote VTEP: one that a packet can be sent to.
std::optional< Pelk::IpGenAddr > vtepIn( Reading & reading, std::string const & text, int line );

// An interface or a port channel, of which there must be a definition somewhere.
std::optional< Pelk::IntfId > intfIn( Reading & reading, std::string const & text, int line );

void readForwarding( Reading & reading, Value const & value,
                     std::optional< Forwarding > & forwarding );
void readDesignated( Reading & reading, Value const & value, DesignatedForwarder & designated );
void readFrame( Reading & reading, Value const & value, Frame & frame );
void readCapture( Reading & reading, Value const & value, Capture & capture );
void readFramesLike( Reading & reading, Value const & value, FramesLike & frames );
void readDrift( Reading & reading, Value const & value, Drift & drift );
void readReplace( Reading & reading, Value const & value, Replace & replace );
void readFailCall( Reading & reading, Value const & value, FailCall & fail );

void readPath( Reading & reading, Value const & value, StateDatabase::EntityPath & path );

template< typename T > void readEntity( Reading & reading, Value const & value, T & target ) {
   readPath( reading, value, target.at.entity );
}

template< typename T, std::string AttributeAt::*member >
void readPlace( Reading & reading, Value const & value, T & target ) {
   readText< AttributeAt, member >( reading, value, target.at );
}

// The words of a mapping whose subject is one attribute of one entity, its `at`, followed by
// `others`.
template< typename T >
Table< T > attributeTable( std::string_view place, std::vector< Word< T > > const & others ) {
   Table< T > table{ place,
                     { { { "entity", "entity: /evpn/status" }, readEntity< T > },
                       { { "attribute", "attribute: segmentStatus" },
                         readPlace< T, &AttributeAt::attribute > },
                       { { "key", "" }, readPlace< T, &AttributeAt::key > } } };
   table.words.insert( table.words.end(), others.begin(), others.end() );
   return table;
}

// Every list of words of each source, for vocabulary().
std::vector< WordList > switchVocabulary();
std::vector< WordList > publishedVocabulary();
std::vector< WordList > stepsVocabulary();
std::vector< WordList > expectationsVocabulary();
std::vector< WordList > rulesVocabulary();
std::vector< WordList > forwardingVocabulary();
std::vector< WordList > framesVocabulary();
std::vector< WordList > driftVocabulary();
std::vector< WordList > failCallVocabulary();

}  // namespace Scenario
