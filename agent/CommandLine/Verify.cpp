#include <CommandLine/Verify.h>

#include <iostream>
#include <sstream>

#include <fmt/format.h>

#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Words.h>
#include <Story/AuditText.h>
#include <Story/HumanWriter.h>
#include <Story/JsonForms.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Json = nlohmann::ordered_json;

// An audit, and the step after which it was made.
struct AuditAfter {
   Story::StepBegins step;
   Story::Audited audit;
};

// The results of the command's own verification: the last audit of each step, and the plug-in's
// pass at the end.
class Verified final : public Story::Observer {
 public:
   using Pass = Story::PluginPass::State;

   void onEvent( Story::Event const & event ) override {
      std::visit( Story::Overloaded{
                     [ & ]( Story::RunBegins const & run ) { title_ = run.title; },
                     [ & ]( Story::StepBegins const & step ) { step_ = step; },
                     [ & ]( Story::VariantChosen const & chosen ) { variant_ = chosen.variant; },
                     [ & ]( Story::Audited const & audit ) { take( audit ); },
                     [ & ]( Story::PluginPass const & pass ) { take( pass ); },
                     []( auto const & ) {} },
                  event );
   }

   std::string const & title() const { return title_; }
   std::string const & variant() const { return variant_; }
   std::vector< AuditAfter > const & audits() const { return audits_; }
   // Nothing: the process did not get that far.
   std::optional< Pass > const & pass() const { return pass_; }
   // Empty if it was not skipped.
   std::string const & whySkipped() const { return whySkipped_; }
   bool isPassStopped() const { return pass_ == Pass::Begins; }

   // The audits that the command has requested.
   std::vector< AuditAfter > asked( bool isAfterEachStep ) const {
      std::vector< AuditAfter > result;
      for ( AuditAfter const & one : audits_ ) {
         if ( isAfterEachStep || isFinal( one ) ) {
            result.push_back( one );
         }
      }
      return result;
   }

   static bool isFinal( AuditAfter const & one ) {
      return one.step.kind == Story::StepKind::Verification;
   }

 private:
   void take( Story::Audited const & audit ) {
      if ( !audits_.empty() && audits_.back().step.number == step_.number ) {
         audits_.back().audit = audit;
      } else {
         audits_.push_back( { step_, audit } );
      }
   }
   void take( Story::PluginPass const & pass ) {
      if ( step_.kind == Story::StepKind::Verification ) {
         pass_ = pass.state;
         whySkipped_ = pass.reason;
      }
   }

   std::string title_;
   std::string variant_;
   Story::StepBegins step_;
   std::vector< AuditAfter > audits_;
   std::optional< Pass > pass_;
   std::string whySkipped_;
};

std::size_t faultsIn( std::vector< AuditAfter > const & audits ) {
   std::size_t faults = 0;
   for ( AuditAfter const & one : audits ) {
      faults += Story::faultsIn( one.audit );
   }
   return faults;
}

// An interrupted pass has no result.
std::string passName( Verified const & verified, Story::Outcome const & outcome ) {
   if ( !verified.pass() || ( verified.isPassStopped() && outcome.interrupted() ) ) {
      return "not-run";
   }
   switch ( *verified.pass() ) {
   case Verified::Pass::Begins: return "stopped";
   case Verified::Pass::Held: return "held";
   case Verified::Pass::Skipped: return "skipped";
   case Verified::Pass::Absent: break;
   }
   return "absent";
}

std::string endName( Story::ExitCode code, Story::Outcome const & outcome ) {
   if ( outcome.interrupted() ) {
      return "interrupted";
   }
   switch ( code ) {
   case Story::ExitCode::Held: return "in-sync";
   case Story::ExitCode::Stopped: return "stopped";
   case Story::ExitCode::BadInput: return "failed";
   default: return "differences";
   }
}

// The run got as far as to a verdict on the rules.
bool hasVerdict( Story::ExitCode code ) {
   return code == Story::ExitCode::Held || code == Story::ExitCode::ExpectationFailed ||
          code == Story::ExitCode::Stopped;
}

// The expectations of the scenario do not count.
Story::ExitCode exitCodeOf( Story::Outcome const & outcome,
                            std::vector< AuditAfter > const & audits ) {
   auto const code = outcome.exitCodeOfAnswer();
   if ( code != Story::ExitCode::Held ) {
      return code;
   }
   return faultsIn( audits ) == 0 ? Story::ExitCode::Held : Story::ExitCode::ExpectationFailed;
}

// --- For people

std::string afterText( AuditAfter const & one ) {
   return Verified::isFinal( one ) ? "at the end"
                                   : "after " + nameOf( one.step ) + ": " + one.step.text;
}

std::string passText( Verified const & verified, Story::Outcome const & outcome ) {
   if ( !verified.isPassStopped() ) {
      return "the plug-in's own pass: " + passName( verified, outcome ) +
             ( verified.whySkipped().empty() ? "" : "; " + verified.whySkipped() );
   }
   auto const & assertion = outcome.stopped()->assertion;
   return assertion
             ? fmt::format(
                  "the plug-in's own pass stopped the process: assertion {}, at "
                  "{}:{}, in {}",
                  assertion->expression, assertion->file, assertion->line, assertion->function )
             : "the plug-in's own pass stopped the process: " + outcome.stopped()->reason;
}

// A switch in sync can still leave VTEPs unprotected, for lack of room or of a class id.
std::string verdictText( std::vector< AuditAfter > const & audits, Story::ExitCode code,
                         Story::Style const & style ) {
   if ( code != Story::ExitCode::Held ) {
      return style.bad( code == Story::ExitCode::Stopped ? "STOPPED" : "DIFFERENCES" );
   }
   std::string const unprotected =
      audits.empty() ? "" : Story::unprotectedText( audits.back().audit );
   return unprotected.empty() ? style.good( "IN SYNC" )
                              : style.bold( "IN SYNC, but with " + unprotected );
}

void print( Verified const & verified, std::vector< AuditAfter > const & audits,
            Story::Outcome const & outcome, Story::ExitCode code, std::ostream & out ) {
   Story::Style const style( isColoured( STDOUT_FILENO ) );
   std::string const & variant = verified.variant();  // empty before the plug-in is ready
   out << style.bold( verified.title() )
       << ( variant.empty() ? "" : " (" + Text::printable( variant ) + ')' ) << '\n';
   for ( AuditAfter const & one : audits ) {
      out << style.bold( afterText( one ) ) << '\n';
      for ( std::string const & line : linesOf( one.audit, style ) ) {
         out << "   " << line << '\n';
      }
   }
   out << "   " << Text::printable( passText( verified, outcome ) ) << '\n';
   for ( Story::KnownLimit const & limit : outcome.limits() ) {
      out << "   known limit (docs/limits.md): " << style.bold( limit.title ) << '\n'
          << "      Remedy: " << Text::printable( limit.remedy ) << '\n';
   }
   out << verdictText( audits, code, style ) << '\n';
}

// --- For programs

Json auditJson( AuditAfter const & one ) {
   Json json{ { "step", one.step.number },
              { "text", one.step.text },
              { "place", Story::textOrNull( one.step.place ) } };
   json.update( jsonOf( one.audit ) );
   return json;
}

void printJson( std::string const & file, Verified const & verified,
                std::vector< AuditAfter > const & audits, Story::Outcome const & outcome,
                Story::ExitCode code, std::ostream & out ) {
   Json json{ { "scenario", verified.title() },
              { "file", file },
              { "variant", Story::textOrNull( verified.variant() ) },
              { "end", endName( code, outcome ) },
              { "pluginPass", passName( verified, outcome ) },
              { "assertion", nullptr },
              { "step", nullptr },
              { "limits", jsonOf( outcome.limits() ) },
              { "error", Story::textOrNull( outcome.badInput() ) },
              { "audits", Json::array() } };
   bool const isCutShort =
      outcome.stopped() || outcome.interrupted() || code == Story::ExitCode::BadInput;
   if ( isCutShort && outcome.step() ) {
      json[ "step" ] = outcome.step()->number;
   }
   if ( outcome.stopped() && outcome.stopped()->assertion ) {
      json[ "assertion" ] = jsonOf( *outcome.stopped()->assertion );
   }
   for ( AuditAfter const & one : audits ) {
      json[ "audits" ].push_back( auditJson( one ) );
   }
   out << Story::documentText( json );
}

}  // namespace

void Verify::declare( CLI::App & app ) {
   scenario_.declare( app );
   after_.declare( app,
                   "Verify after this step, 0 for start-up, or at this time of a record, as in "
                   "2.5s; by default after the last one" );
   flag( app, "--after-each-step", isAfterEachStep_, "Audit the rules after each step as well" );
}

void Verify::readWords() {
   scenario_.readWords();
   after_.readWords();
}

Story::ExitCode Verify::perform( std::ostream & out ) {
   using When = Host::AgentConfig::Verify;
   Scenario::Model const scenario = scenario_.read();
   ScenarioRun what{ scenario, scenario_.config(), {}, scenario_.turnLimit(), scenario_.record() };
   after_.limit( what.config, scenario, scenario_.record() );
   what.config.verify = isAfterEachStep_ ? When::afterEachStep : When::atEnd;
   std::ostringstream story;
   Story::HumanWriter writer( story, Story::Style( false ) );
   Verified verified;
   Story::Outcome outcome;
   runScenario( what, { &writer, &verified }, outcome );
   tellBadInput( outcome );
   auto const audits = verified.asked( isAfterEachStep_ );
   auto const code = exitCodeOf( outcome, audits );
   if ( code == Story::ExitCode::Stopped && !verified.isPassStopped() ) {
      std::cerr << story.str();
   }
   if ( scenario_.isJson() ) {
      printJson( what.config.scenario, verified, audits, outcome, code, out );
   } else if ( hasVerdict( code ) ) {
      print( verified, audits, outcome, code, out );
   }
   tellInterruption( outcome );
   return code;
}

}  // namespace CommandLine
