// Keeps a run in a file: first its inputs, then every event as it is told.
//
//    Record::Writer writer( "run.record", setup );
//    writer.add( { "scenarios/two-leaves/scenario.yaml", text } );
//    writer.inputsEnd();
//    // and then as an observer of the run
//
// A step is in the file when it has ended, so a program that is killed leaves whole steps behind.
// Failures: those of FileWriter (Record/File.h), in every call.
#pragma once

#include <Record/File.h>
#include <Record/Items.h>
#include <Story/Observer.h>

namespace Record {

class Writer final : public Story::Observer {
 public:
   // A block that is not the last of a step has at least so many bytes.
   static constexpr std::size_t kBlock = std::size_t{ 256 } * 1024;

   Writer( std::filesystem::path file, Setup const & setup );

   // Adds a file of the run by its path; in parts, so that a long one needs no memory.
   void add( FilePart part );
   void inputsEnd();

   void onEvent( Story::Event const & event ) override;

 private:
   template< typename What > void put( What const & what );
   void endBlock();

   FileWriter file_;
   std::string block_;
};

}  // namespace Record
