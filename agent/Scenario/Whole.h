// A scenario as a document of its own: one that is based on another, together with that one.
//
//    Scenario::Whole const whole( file, text );
//    std::string const copy = textOf( whole.document( "copy.yaml", whole.steps() ) );
//
// The steps are those of its variant, without the word 'only-on'. A path in a document leads to the
// same file from the new document's folder. A run that had other steps than the scenario has them
// here, too: endWith() and add().
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Scenario/Root.h>
#include <Scenario/Yaml.h>

namespace Scenario {

// A step, and the folder that its paths begin in.
struct PlacedStep {
   Yaml step;
   std::filesystem::path folder;
};

class Whole {
 public:
   // The reader has taken the text; `file` is its path. ReadError when the scenario that it is
   // based on cannot be read.
   Whole( std::filesystem::path const & file, std::string const & text, Root const & root = {} );

   // Leaves out the steps behind this one.
   void endWith( std::size_t step );
   // Adds an element of a list of steps at the end, unless it is for the other variant. Its paths
   // begin in the folder.
   void add( std::string const & step, std::filesystem::path const & folder );

   std::string const & variant() const { return variant_; }
   std::vector< PlacedStep > const & steps() const { return steps_; }

   // The whole scenario that it is based on, or itself, and how many steps are in there.
   std::filesystem::path const & base() const { return base_.file; }
   std::size_t baseSteps() const { return baseSteps_; }

   // The folder of its feature files.
   std::filesystem::path features() const;

   // The document for `file`, with these steps.
   Yaml document( std::filesystem::path const & file,
                  std::vector< PlacedStep > const & steps ) const;

 private:
   struct Document {
      std::filesystem::path file;
      Yaml content;
   };

   void addSteps( Document const & document );
   void addStep( Yaml step, std::filesystem::path const & folder );

   Document base_;
   std::optional< std::string > description_;  // of the scenario that is based on the other
   std::string variant_;
   std::vector< PlacedStep > steps_;
   std::size_t baseSteps_ = 0;
};

// A document for `file` that is based on the whole scenario's base, with these steps behind its
// own.
Yaml basedOn( Whole const & whole, std::filesystem::path const & file, Yaml const & steps );

// The path of `target` from the folder of `file`.
std::string pathFrom( std::filesystem::path const & file, std::filesystem::path const & target );

// The steps, with their paths from the folder of `file`.
Yaml listOf( std::filesystem::path const & file, std::vector< PlacedStep > const & steps );

// The name of a scenario in that file: its folder's, where the file has the usual name.
std::string nameFor( std::filesystem::path const & file );

}  // namespace Scenario
