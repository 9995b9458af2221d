#include <Story/HumanWriter.h>

#include <functional>
#include <sstream>

#include <fmt/format.h>

#include <Snapshot/RuleText.h>
#include <Story/AuditText.h>
#include <Story/EntityText.h>

namespace Story {

void HumanWriter::onEvent( Event const & event ) {
   outcome_.onEvent( event );
   std::visit( [ this ]( auto const & what ) { tell( what ); }, event );
}

void HumanWriter::shown( std::string const & text ) {
   out_ << "   " << text << '\n';
}

// --- The progress of the run

void HumanWriter::tell( RunBegins const & event ) {
   out_ << style_.bold( event.title ) << " (" << Text::printable( event.scenario ) << ")\n";
   if ( !event.description.empty() ) {
      out_ << Text::printableLines( event.description ) << '\n';
   }
}

void HumanWriter::tell( StepBegins const & event ) {
   if ( event.kind == StepKind::StartUp ) {
      publishedBefore();
   }
   out_ << '\n'
        << style_.bold( nameOf( event ) ) << ": " << Text::printable( event.text ) << '\n'
        << std::flush;
}

void HumanWriter::tell( StepEnds const & ) {
   endOfStep();
}

void HumanWriter::endOfStep() {
   ruleChanges();
   frameTable();
   if ( held_ != 0 ) {
      shown( style_.good( isAnyFailed_ ? "the rest is as expected" : "as expected" ) );
   }
   held_ = 0;
   isAnyFailed_ = false;
}

void HumanWriter::tell( RunEnds const & ) {
   verdict();
}

void HumanWriter::tell( Stopped const & event ) {
   bool const isAsExpected = event.isAsExpected.value_or( false );
   std::string const heading = fmt::format( "STOPPED in {}{}: {}.", nameOf( outcome_.step() ),
                                            isAsExpected ? ", as expected" : "", event.words() );
   endOfStep();
   out_ << '\n' << ( isAsExpected ? style_.good( heading ) : style_.bad( heading ) ) << '\n';
   if ( event.assertion ) {
      shown( "assertion  " + style_.bold( event.assertion->expression ) );
      detail( fmt::format( "at         {}:{}", event.assertion->file, event.assertion->line ) );
      detail( fmt::format( "in         {}", event.assertion->function ) );
   }
   knownLimits();
   if ( !event.trace.empty() ) {
      out_ << "The last lines of its trace ring:\n";
      for ( Traced const & line : event.trace ) {
         detail( fmt::format( "{} {}: {}", line.handle, line.level, line.text ) );
      }
   }
   if ( !event.output.empty() ) {
      out_ << "The last lines that it printed:\n";
      for ( std::string const & line : event.output ) {
         detail( line );
      }
   }
   if ( event.isAsExpected ) {
      verdict();
   }
   out_ << std::flush;
}

void HumanWriter::knownLimits() {
   auto const & limits = outcome_.limits();
   if ( limits.size() > 1 ) {
      out_ << "One of these known limits (docs/limits.md):\n";
   } else if ( !limits.empty() ) {
      out_ << "A known limit (docs/limits.md):\n";
   }
   for ( KnownLimit const & limit : limits ) {
      shown( style_.bold( limit.title ) );
      detail( "   Remedy: " + limit.remedy );
   }
}

void HumanWriter::tell( Warning const & event ) {
   shown( style_.bold( event.words() ) );
}

void HumanWriter::tell( Interrupted const & event ) {
   ruleChanges();
   frameTable();
   out_ << '\n'
        << style_.bad(
              fmt::format( "INTERRUPTED in {} {}", nameOf( outcome_.step() ), event.words() ) )
        << "; so far " << counted( outcome_.expectations(), "expectation" ) << ", "
        << outcome_.failedExpectations() << " of which did not hold, and "
        << counted( rules_.rules().size(), "rule" ) << " in the chip.\n";
   totals();
}

void HumanWriter::publishedBefore() {
   out_ << "Published before the plug-in is loaded: " << counted( changesBefore_, "change" )
        << " of the state database and the agent's shared state.\n";
}

void HumanWriter::verdict() {
   U32 const failed = outcome_.failedExpectations();
   std::string const rules = counted( rules_.rules().size(), "rule" );
   out_ << '\n';
   if ( failed != 0 ) {
      out_ << style_.bad( fmt::format( "FAILED: {} of {} did not hold", failed,
                                       counted( outcome_.expectations(), "expectation" ) ) );
   } else if ( outcome_.expectations() != 0 ) {
      out_ << style_.good( "PASSED: " + counted( outcome_.expectations(), "expectation" ) +
                           " held" );
   } else {
      out_ << style_.good( "COMPLETED" );
   }
   out_ << "; " << rules << " in the chip at the end.\n";
   totals();
}

void HumanWriter::totals() {
   if ( totals_.frames != 0 ) {
      out_ << fmt::format( "{} in, {}; {}.\n", counted( totals_.frames, "frame" ),
                           totals_.dropsText(), totals_.copiesText() );
   }
   out_ << std::flush;
}

// --- Rules

void HumanWriter::ruleChanges() {
   Chip::RuleChanges const changes = rules_.changes();
   for ( Chip::Rule const & rule : changes.added ) {
      ruleLine( style_.good( "rule added: " ), rule );
   }
   for ( Chip::RuleChange const & change : changes.changed ) {
      ruleLine( "rule changed: ", change.after );
      detail( "   before: " + Chip::bodyText( change.before, std::cref( names_ ) ) );
   }
   for ( Chip::Rule const & rule : changes.removed ) {
      shown( style_.bad( "rule removed: " ) + Text::printable( Chip::headingText( rule ) ) );
   }
}

void HumanWriter::ruleLine( std::string const & what, Chip::Rule const & rule ) {
   shown( what + Text::printable( Chip::headingText( rule ) ) );
   detail( "   " + Chip::bodyText( rule, std::cref( names_ ) ) );
}

// --- Frames

void HumanWriter::tell( FrameForwarded const & event ) {
   frames_.add( event.frame );
   totals_.add( event.frame );
}

void HumanWriter::frameTable() {
   if ( !frames_.isEmpty() ) {
      for ( std::string const & line : frames_.lines() ) {
         detail( line );
      }
      frames_.clear();
   }
}

// --- Dumps

void HumanWriter::tell( EntityDumped const & event ) {
   std::istringstream tree( treeText( event.path, event.tree ) );
   for ( std::string line; std::getline( tree, line ); ) {
      detail( line );
   }
}

void HumanWriter::tell( RulesDumped const & event ) {
   for ( Chip::Rule const & rule : event.rules ) {
      ruleLine( "rule: ", rule );
   }
   if ( event.rules.empty() ) {
      detail( "there are no rules" );
   }
}

// --- Audits

void HumanWriter::tell( Audited const & event ) {
   for ( std::string const & line : linesOf( event, style_ ) ) {
      shown( line );
   }
}

// --- The plug-in's requests, traces and log lines

void HumanWriter::tell( MountAsked const & event ) {
   if ( event.isToWrite() ) {
      writable_.insert( "/" + event.path );
   }
   detail( event.words() );
}

void HumanWriter::tell( MountsDone const & event ) {
   shown( event.problems.empty() ? Text::printable( event.words() ) : style_.bad( event.words() ) );
}

void HumanWriter::tell( PublishedChange const & event ) {
   names_.onEvent( event );
   if ( !outcome_.step() ) {
      ++changesBefore_;
   } else if ( writable_.contains( event.path ) ) {
      detail( event.words() );
   }
}

void HumanWriter::tell( ExpectationChecked const & event ) {
   if ( event.held ) {
      ++held_;
   } else {
      isAnyFailed_ = true;
      shown( style_.bad( event.words() ) );
   }
}

}  // namespace Story
