// The inputs of a record, laid out in a temporary folder, which goes with the object.
#pragma once

#include <filesystem>

#include <Record/Reader.h>
#include <Scenario/Reader.h>
#include <Scenario/Root.h>
#include <Scenario/Scenario.h>
#include <Scenario/Whole.h>

namespace CommandLine {

class ReplayInputs {
 public:
   // Reads the inputs and leaves the reader at the first event. Story::InputError when the record
   // ends before; std::system_error when the folder takes no files.
   explicit ReplayInputs( Record::Reader & reader );
   ReplayInputs( ReplayInputs const & ) = delete;
   ReplayInputs & operator=( ReplayInputs const & ) = delete;
   ~ReplayInputs();

   Record::Setup const & setup() const { return setup_; }
   // The scenario as the run had it, with more steps at its end. Scenario::ReadError when this
   // program reads it in another way.
   Scenario::Model scenario( std::vector< Scenario::AddedStep > const & more = {} ) const;
   // The same as a document. Its paths are those of the place where it was recorded.
   Scenario::Whole whole() const;
   // Where the recorded paths lead to.
   Scenario::Root const & root() const { return root_; }

 private:
   void takeAll( Record::Reader & reader );
   void take( Record::FilePart const & part ) const;

   std::filesystem::path folder_;
   Record::Setup setup_;
   Scenario::Root root_;
};

}  // namespace CommandLine
