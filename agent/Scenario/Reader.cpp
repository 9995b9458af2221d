#include <Scenario/Reader.h>

#include <span>

#include <Quelm/Error.h>
#include <Scenario/Course.h>
#include <Scenario/Document.h>
#include <Scenario/File.h>
#include <Scenario/Interfaces.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Scenario/Vocabulary.h>
#include <Trace/Trace.h>

#include <unistd.h>

namespace Scenario {

namespace {

namespace fs = std::filesystem;

// The model of a scenario while its file is read.
struct Draft {
   Model model;
   std::vector< StepForVariant > steps;
   StepsReader readSteps;
   fs::path directory;  // of the file
};

// --- The words of a scenario

void readName( Reading & reading, Value const & value, Draft & draft ) {
   draft.model.name = stringOf( reading, value ).value_or( "" );
}

void readDescription( Reading & reading, Value const & value, Draft & draft ) {
   draft.model.description = stringOf( reading, value ).value_or( "" );
}

void readSwitchWord( Reading & reading, Value const & value, Draft & draft ) {
   readSwitch( reading, value, draft.model );
}

void readForwardingWord( Reading & reading, Value const & value, Draft & draft ) {
   readForwarding( reading, value, draft.model.forwarding );
}

void readEvpnWord( Reading & reading, Value const & value, Draft & draft ) {
   readEvpn( reading, value, draft.model.published );
}

void readFeatures( Reading & reading, Value const & value, Draft & draft ) {
   auto const directory = stringOf( reading, value );
   if ( !directory ) {
      return;
   }
   draft.model.featureFiles = draft.directory / *directory;
   std::error_code error;
   if ( !fs::is_directory( draft.model.featureFiles, error ) ) {
      reading.problem( value.line, "features is " + pathInQuotes( *directory ) +
                                      ", which is no directory; give the directory of the feature "
                                      "files, as a path from the scenario's directory" );
   }
}

void readTrace( Reading & reading, Value const & value, Draft & draft ) {
   for ( Value const & handles : mappingOf( reading, value ) ) {
      auto const text = stringOf( reading, handles );
      if ( !text ) {
         continue;
      }
      try {
         reading.addTraceLevels( handles.name, Trace::levelsFromText( *text ) );
         draft.model.trace.push_back( { handles.name, *text, handles.line } );
      } catch ( Quelm::TextError const & ) {
         reading.problem( handles.line, handles.name + " is " + inQuotes( *text ) +
                                           "; trace levels are expected, as in 0-5,9" );
      }
   }
}

void readStepsWord( Reading & reading, Value const & value, Draft & draft ) {
   draft.readSteps( reading, value, draft.steps );
}

Table< Draft > const & scenarioTable() {
   static Table< Draft > const table{
      { "scenario", "A whole scenario." },
      { { { "scenario", "scenario: start-up",
            Shape::of( "text", "The scenario's name, usually the name of its folder." ) },
          readName },
        { { "description", "",
            Shape::of( "text", "The purpose of the scenario, in a sentence or two." ) },
          readDescription },
        { { "switch", "switch: { name: leaf1, ... }", Shape::of( "switch" ) }, readSwitchWord },
        { { "forwarding", "", Shape::of( "forwarding" ) }, readForwardingWord },
        { { "evpn", "", Shape::of( "evpn" ) }, readEvpnWord },
        { { "features", "",
            Shape::of( "text",
                       "The directory of the feature files (VornalL3.json), relative to this file. "
                       "This file's own directory if left out." ) },
          readFeatures },
        { { "trace", "",
            Shape::mappingOf( Shape::json( R"({"minLength": 1})" ), Shape::of( "levels" ),
                              "Text trace levels by trace handle: a handle's name, or the "
                              "beginning of one followed by '*'. Later lines win. Without a line, "
                              "VornalEvpnMounter shows levels 0 and 8, and all others level 0." ) },
          readTrace },
        { { "steps", "",
            Shape::listOf( Shape::of( "step" ),
                           "The steps after the plug-in has been loaded and has mounted its state, "
                           "in order." ) },
          readStepsWord } }
   };
   return table;
}

// --- A scenario that is based on another

struct Twin {
   std::string name;
   std::string description;
   std::string base;
   int baseLine = 1;
   std::optional< Variant > variant;
   bool hasSteps = false;
};

void readBase( Reading & reading, Value const & value, Twin & twin ) {
   twin.base = stringOf( reading, value ).value_or( "" );
   twin.baseLine = value.line;
}

void readVariant( Reading & reading, Value const & value, Twin & twin ) {
   twin.variant = choiceOf( reading, value, variants() );
}

// The steps are read behind those of the other scenario, by what that has published.
void readTwinSteps( Reading & reading, Value const & value, Twin & twin ) {
   twin.hasSteps = !listOf( reading, value ).empty();
}

Table< Twin > const & twinTable() {
   static Table< Twin > const table{
      { "derived-scenario",
        "A scenario that repeats another one under its own name, possibly on the other variant." },
      { { { "scenario", "scenario: start-up-class-id",
            Shape::of( "text", "The scenario's name, usually the name of its folder." ) },
          readText< Twin, &Twin::name > },
        { { "description", "",
            Shape::of( "text",
                       "The purpose of the scenario; by default that of the other scenario." ) },
          readText< Twin, &Twin::description > },
        { { "based-on", "based-on: ../start-up/scenario.yaml",
            Shape::of( "text",
                       "The file of the other scenario, relative to this one. It must be a whole "
                       "scenario." ) },
          readBase },
        { { "variant", "", Shape::of( "variant" ) }, readVariant },
        { { "steps", "",
            Shape::listOf( Shape::of( "step" ), "Steps after those of the other scenario." ) },
          readTwinSteps } }
   };
   return table;
}

// --- Both

bool isTwin( Value const & document ) {
   return document.node.IsMap() && document.node[ "based-on" ];
}

// A scenario's text and what is in it.
struct Source {
   std::string const & text;
   Value document;
   fs::path file;
};

// How a scenario is read.
struct Request {
   StepsReader readSteps;
   std::vector< AddedStep > added;
   // --- From a scenario that is based on it
   std::optional< Variant > variant{};      // in place of the scenario's own
   std::optional< AddedStep > twinSteps{};  // the text of that scenario, which has steps
};

void readTwinStepsOf( Reading & reading, AddedStep const & twin, Draft & draft ) {
   YAML::Node const document = reading.add( twin.name, twin.text );
   draft.readSteps( reading, { document[ "steps" ], 1, "steps" }, draft.steps );
}

void readAdded( Reading & reading, AddedStep const & step, Draft & draft ) {
   YAML::Node list( YAML::NodeType::Sequence );
   list.push_back( reading.add( step.name, step.text ) );
   draft.readSteps( reading, { list, 1, step.name }, draft.steps );
}

// The steps for the model's variant.
std::vector< Step > stepsFor( Variant variant, std::span< StepForVariant const > steps ) {
   std::vector< Step > result;
   for ( StepForVariant const & step : steps ) {
      if ( !step.onlyOn || step.onlyOn == variant ) {
         result.push_back( step.step );
      }
   }
   return result;
}

Model modelOf( Source const & source, Request const & request ) {
   Reading reading( source.file.string(), source.text );
   Draft draft;
   draft.readSteps = request.readSteps;
   draft.directory = source.file.parent_path();
   draft.model.file = source.file.string();
   draft.model.featureFiles = draft.directory;
   readMapping( reading, source.document, scenarioTable(), draft );
   if ( request.twinSteps ) {
      readTwinStepsOf( reading, *request.twinSteps, draft );
   }
   std::size_t const own = draft.steps.size();
   for ( AddedStep const & step : request.added ) {
      readAdded( reading, step, draft );
   }
   reading.check();

   Model model = std::move( draft.model );
   model.sources = reading.sources();
   Variant const variant = request.variant.value_or( model.device.variant );
   model.device.variant = variant;
   model.steps = stepsFor( variant, draft.steps );
   model.ownSteps = stepsFor( variant, std::span( draft.steps ).first( own ) ).size();
   followCourse( reading, model );
   reading.check();
   return model;
}

Twin twinIn( Reading & reading, Source const & source ) {
   Twin twin;
   readMapping( reading, source.document, twinTable(), twin );
   reading.check();
   return twin;
}

Model modelOfTwin( Source const & source, Request request ) {
   Reading reading( source.file.string(), source.text );
   Twin const twin = twinIn( reading, source );
   auto const refuse = [ & ]( std::string const & why ) {
      reading.problem( twin.baseLine, "based-on is " + pathInQuotes( twin.base ) + why );
      reading.check();
   };
   fs::path const base = ( source.file.parent_path() / twin.base ).lexically_normal();
   std::error_code error;
   if ( !fs::is_regular_file( base, error ) ) {
      refuse( ", which is no file; the file of a scenario is expected, relative to this one" );
   }
   std::string const baseText = textIn( base );
   Value const document = documentIn( baseText, base.string() );
   if ( isTwin( document ) ) {
      refuse( ", which is based on another itself; name the scenario that it is based on" );
   }
   if ( twin.hasSteps ) {
      request.twinSteps = { source.file.string(), source.text };
   }
   request.variant = twin.variant;
   Model model = modelOf( { baseText, document, base }, request );
   model.name = twin.name;
   model.description = twin.description.empty() ? model.description : twin.description;
   return model;
}

}  // namespace

Model read( fs::path const & file, StepsReader readSteps, std::vector< AddedStep > const & added ) {
   std::string const input = "standard input";
   return file == "-" ? readText( textOf( STDIN_FILENO, input ), input, readSteps, added )
                      : readText( textIn( file ), file, readSteps, added );
}

Model readText( std::string const & text, fs::path const & file, StepsReader readSteps,
                std::vector< AddedStep > const & added ) {
   Source const source{ text, documentIn( text, file.string() ), file };
   Request const request{ readSteps, added };
   return isTwin( source.document ) ? modelOfTwin( source, request ) : modelOf( source, request );
}

std::vector< WordList > vocabulary() {
   std::vector< WordList > all{ scenarioTable().list(), twinTable().list() };
   for ( auto const & part : { switchVocabulary(), interfaceVocabulary(), publishedVocabulary(),
                               forwardingVocabulary() } ) {
      all.insert( all.end(), part.begin(), part.end() );
   }
   return all;
}

}  // namespace Scenario
