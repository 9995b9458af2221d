// What a record of a run holds, in this order: the words of the command, the files that the run
// reads, the end of these inputs, and the events of the run.
//
// An item is written as the length of its bytes, its number in the list, and its fields
// (Story/Binary.h).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <Story/Event.h>

namespace Record {

// A step that was added to the scenario; Scenario::AddedStep.
struct Step {
   std::string name;
   std::string text;

   static void fields( auto & step, auto && field ) {
      field( "name", step.name );
      field( "text", step.text );
   }
};

// Text trace levels of the command line; Scenario::TraceLevels.
struct Levels {
   std::string handles;
   std::string levels;

   static void fields( auto & levels, auto && field ) {
      field( "handles", levels.handles );
      field( "levels", levels.levels );
   }
};

struct Setup {
   std::string program;    // its version
   std::string directory;  // the current one, to which relative paths belong
   std::string scenario;   // the file, as the user gave it
   std::vector< Step > added;
   std::optional< U32 > until;     // the scenario's own steps behind this one are left out
   std::optional< U32 > lastStep;  // all steps behind this one are left out
   std::vector< Levels > trace;

   static void fields( auto & setup, auto && field ) {
      field( "program", setup.program );
      field( "directory", setup.directory );
      field( "scenario", setup.scenario );
      field( "added", setup.added );
      field( "until", setup.until );
      field( "lastStep", setup.lastStep );
      field( "trace", setup.trace );
   }
};

// Some bytes of a file. The parts of a file follow one another; an empty file has one part.
struct FilePart {
   std::string file;  // its path, as the run names it
   std::string bytes;

   static void fields( auto & part, auto && field ) {
      field( "file", part.file );
      field( "bytes", part.bytes );
   }
};

struct InputsEnd {
   static void fields( auto &, auto && ) {}
};

using Item = std::variant< Setup, FilePart, InputsEnd, Story::Event >;

// Appends an item to the bytes.
void write( std::string & bytes, Item const & item );
// The same without a copy of the event.
void write( std::string & bytes, Story::Event const & event );

// Takes the first item from the bytes. Throws std::runtime_error for bytes that begin with none.
Item takeItem( std::string_view & bytes );

// A number that is another one whenever an item or an event has another form.
U64 layoutFingerprint();

}  // namespace Record
