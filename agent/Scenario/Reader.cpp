#include <Scenario/Reader.h>

#include <algorithm>
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
   draft.model.featureFiles = reading.placeOf( draft.directory / *directory );
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
   std::optional< std::size_t > own{};  // the number of own steps to take; nothing: all of them
   // Follows the course of the steps even if something else is wrong.
   bool isThorough = false;
   Root root{};
   // --- From a scenario that is based on it
   std::optional< Variant > variant{};      // in place of the scenario's own
   std::optional< AddedStep > twinSteps{};  // the text of that scenario, which has steps
   Doubts doubts{};                         // about that scenario's words
};

void readTwinStepsOf( Reading & reading, AddedStep const & twin, Draft & draft ) {
   YAML::Node const document = reading.add( twin.name, twin.text );
   draft.readSteps( reading, { document[ "steps" ], 1, "steps" }, draft.steps );
}

void readAdded( Reading & reading, AddedStep const & step, Draft & draft ) {
   int const first = reading.sources().lines() + 1;
   YAML::Node list( YAML::NodeType::Sequence );
   list.push_back( reading.add( step.name, step.text ) );
   draft.readSteps( reading, { list, first, step.name }, draft.steps );
   if ( step.isChoice && !draft.steps.empty() ) {
      draft.steps.back().isEffectKnown = false;
   }
}

using StepsForVariant = std::span< StepForVariant const >;

// The steps that the variant takes.
std::vector< StepForVariant > takenBy( Variant variant, StepsForVariant steps ) {
   std::vector< StepForVariant > taken;
   std::copy_if( steps.begin(), steps.end(), std::back_inserter( taken ),
                 [ & ]( StepForVariant const & step ) {
                    return !step.onlyOn || step.onlyOn == variant;
                 } );
   return taken;
}

// Less those that could not be read.
std::vector< Step > stepsIn( StepsForVariant steps ) {
   std::vector< Step > result;
   for ( StepForVariant const & step : steps ) {
      if ( step.step.action ) {
         result.push_back( step.step );
      }
   }
   return result;
}

// Those in front of the first whose effect nobody knows.
StepsForVariant known( StepsForVariant steps ) {
   auto const unknown =
      std::find_if( steps.begin(), steps.end(),
                    []( StepForVariant const & step ) { return !step.isEffectKnown; } );
   return { steps.begin(), unknown };
}

// The own steps, with the added ones at their places; `read` are these, read.
std::vector< StepForVariant > merged( StepsForVariant own, Variant variant,
                                      std::vector< AddedStep > const & added,
                                      StepsForVariant read ) {
   std::vector< StepForVariant > steps;
   auto const add = [ & ]( StepsForVariant more ) {
      steps.insert( steps.end(), more.begin(), more.end() );
   };
   std::size_t taken = 0;
   for ( std::size_t n = 0; n < added.size(); ++n ) {
      std::size_t const end = std::min( added[ n ].behind.value_or( own.size() ), own.size() );
      add( own.subspan( taken, std::max( end, taken ) - taken ) );
      taken = std::max( end, taken );
      add( takenBy( variant, read.subspan( n, 1 ) ) );
   }
   add( own.subspan( taken ) );
   return steps;
}

Findings examineWhole( Source const & source, Request const & request ) {
   Reading reading( source.file.string(), source.text, request.root );
   reading.doubts() = request.doubts;
   Draft draft;
   draft.readSteps = request.readSteps;
   draft.directory = source.file.parent_path();
   draft.model.file = source.file.string();
   draft.model.featureFiles = reading.placeOf( draft.directory );
   readMapping( reading, source.document, scenarioTable(), draft );
   if ( request.twinSteps ) {
      readTwinStepsOf( reading, *request.twinSteps, draft );
   }
   std::size_t const own = draft.steps.size();
   for ( AddedStep const & step : request.added ) {
      readAdded( reading, step, draft );
   }
   reading.compare();

   Model model = std::move( draft.model );
   model.texts.push_back( { source.file, source.text } );
   model.files = reading.files();
   model.sources = reading.sources();
   Variant const variant = request.variant.value_or( model.device.variant );
   model.device.variant = variant;
   StepsForVariant const all( draft.steps );
   auto ownSteps = takenBy( variant, all.first( own ) );
   ownSteps.resize( std::min( ownSteps.size(), request.own.value_or( ownSteps.size() ) ) );
   auto const steps = merged( ownSteps, variant, request.added, all.subspan( own ) );
   model.ownSteps = stepsIn( ownSteps ).size();
   model.steps = stepsIn( steps );
   if ( request.isThorough || reading.problemsSoFar() == 0 ) {
      followCourse( reading, model, stepsIn( known( steps ) ).size() );
   }
   return { reading.problems(), reading.doubts().leftOut(), std::move( model ) };
}

// The file that the twin is based on, and nothing when it is none.
std::optional< Source > baseOf( Reading & reading, Twin const & twin, fs::path const & base,
                                std::string & text ) {
   auto const refuse = [ & ]( std::string const & why ) {
      reading.problem( twin.baseLine, "based-on is " + pathInQuotes( twin.base ) + why );
   };
   fs::path const place = reading.placeOf( base );
   std::error_code error;
   if ( !fs::is_regular_file( place, error ) ) {
      refuse( ", which is no file; the file of a scenario is expected, relative to this one" );
      return std::nullopt;
   }
   text = textIn( place );
   Value const document = documentIn( text, base.string() );
   if ( isTwin( document ) ) {
      refuse( ", which is based on another itself; name the scenario that it is based on" );
      return std::nullopt;
   }
   // Problems quote a scenario. Another file's content is no business of theirs.
   if ( !document.node.IsMap() || !document.node[ "scenario" ] ) {
      refuse( ", which has no word 'scenario', so it is none; name the file of a whole scenario" );
      return std::nullopt;
   }
   return Source{ text, document, base };
}

// What the twin asks of its base.
Request requestOf( Twin const & twin, Source const & source, Doubts const & doubts,
                   Request request ) {
   if ( twin.hasSteps ) {
      request.twinSteps = { source.file.string(), source.text };
   }
   request.variant = twin.variant;
   if ( doubts.has( "derived-scenario" ) || doubts.has( "derived-scenario/steps" ) ) {
      request.doubts.isLost( "scenario/steps" );
   }
   if ( doubts.has( "derived-scenario" ) || doubts.has( "derived-scenario/variant" ) ) {
      request.doubts.isFlawed( "switch/variant" );
   }
   return request;
}

Findings examineBase( Reading & reading, Source const & source, Twin const & twin,
                      Request const & request ) {
   std::string text;
   fs::path const file = ( source.file.parent_path() / twin.base ).lexically_normal();
   try {
      auto const base = baseOf( reading, twin, file, text );
      return base ? examineWhole( *base, requestOf( twin, source, reading.doubts(), request ) )
                  : Findings{ {}, { "the scenario that this one is based on" }, {} };
   } catch ( ReadError const & error ) {
      return { error.problems(), { "the rest of the scenario that this one is based on" }, {} };
   }
}

// Puts the twin's own problems in front of the others. Those of its steps are among the others.
void ownFirst( fs::path const & file, std::vector< Problem > const & own,
               std::vector< Problem > & problems ) {
   problems.insert( problems.begin(), own.begin(), own.end() );
   auto const others =
      std::stable_partition( problems.begin(), problems.end(), [ & ]( Problem const & problem ) {
         return problem.file == file.string();
      } );
   std::stable_sort( problems.begin(), others,
                     []( Problem const & a, Problem const & b ) { return a.line < b.line; } );
}

Findings examineTwin( Source const & source, Request const & request ) {
   Reading reading( source.file.string(), source.text, request.root );
   Twin twin;
   readMapping( reading, source.document, twinTable(), twin );
   Findings findings =
      twin.base.empty() ? Findings() : examineBase( reading, source, twin, request );
   ownFirst( source.file, reading.problems(), findings.problems );
   findings.model.texts.insert( findings.model.texts.begin(), { source.file, source.text } );
   findings.model.name = twin.name;
   findings.model.description =
      twin.description.empty() ? findings.model.description : twin.description;
   return findings;
}

Findings examineText( std::string const & text, fs::path const & file, Request const & request ) {
   Source const source{ text, documentIn( text, file.string() ), file };
   return isTwin( source.document ) ? examineTwin( source, request )
                                    : examineWhole( source, request );
}

Findings examineFile( fs::path const & file, Request const & request ) {
   std::string const input = "standard input";
   return file == "-" ? examineText( textOf( STDIN_FILENO, input ), input, request )
                      : examineText( textIn( file ), file, request );
}

// What the work finds; a file that cannot be read as a whole is a finding, too.
template< typename Work > Findings withErrors( Work const & work ) {
   try {
      return work();
   } catch ( ReadError const & error ) {
      bool const isRead = error.problems().front().line != 0;
      return { error.problems(),
               isRead ? std::vector< std::string >{ "the rest of the file" }
                      : std::vector< std::string >(),
               {} };
   }
}

Model withoutProblems( Findings findings ) {
   if ( !findings.problems.empty() ) {
      throw ReadError( std::move( findings.problems ) );
   }
   return std::move( findings.model );
}

}  // namespace

Model read( fs::path const & file, StepsReader readSteps, std::vector< AddedStep > const & added ) {
   return withoutProblems( examineFile( file, { readSteps, added } ) );
}

Model readText( std::string const & text, fs::path const & file, StepsReader readSteps,
                std::vector< AddedStep > const & added, std::optional< std::size_t > own,
                Root const & root ) {
   return withoutProblems( examineText( text, file, { readSteps, added, own, false, root } ) );
}

Findings examine( fs::path const & file, StepsReader readSteps ) {
   return withErrors( [ & ] { return examineFile( file, { readSteps, {}, {}, true } ); } );
}

Findings examineText( std::string const & text, fs::path const & file, StepsReader readSteps ) {
   return withErrors( [ & ] {
      return examineText( text, file, Request{ readSteps, {}, {}, true } );
   } );
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
