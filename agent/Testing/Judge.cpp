#include <Testing/Judge.h>

#include <sstream>

#include <fmt/format.h>

#include <Story/Wording.h>

namespace Testing {

Failure mistake( std::string const & text ) {
   std::istringstream lines( text );
   Failure failure;
   std::getline( lines, failure.what );
   for ( std::string line; std::getline( lines, line ); ) {
      failure.lines.push_back( line );
   }
   return failure;
}

void Judge::onEvent( Story::Event const & event ) {
   outcome_.onEvent( event );
   std::visit( Story::Overloaded{
                  [ & ]( Story::RunBegins const & run ) { result_.title = run.title; },
                  [ & ]( Story::ExpectationChecked const & expectation ) { take( expectation ); },
                  [ & ]( Story::Stopped const & stopped ) { take( stopped ); },
                  [ & ]( Story::BadInput const & input ) { take( input ); },
                  [ & ]( Story::Interrupted const & interrupted ) { take( interrupted ); },
                  [ & ]( Story::RunEnds const & ) { result_.isOver = true; },
                  []( auto const & ) {} },
               event );
}

void Judge::take( Story::ExpectationChecked const & expectation ) {
   ++result_.expectations;
   if ( !expectation.held ) {
      result_.failures.push_back(
         { expectation.place,
           "not as expected in " + nameOf( outcome_.step() ),
           { "expected   " + expectation.text, "found      " + expectation.found } } );
   }
}

// The expectation of a stop has judged the stop of its step.
void Judge::take( Story::Stopped const & stopped ) {
   result_.isOver = true;
   if ( stopped.isAsExpected ) {
      return;
   }
   auto const & step = outcome_.step();
   Failure failure{ step ? step->place : "",
                    fmt::format( "STOPPED in {}: {}", nameOf( step ), stopped.words() ),
                    { "step       " + ( step ? step->text : "none" ) } };
   if ( stopped.assertion ) {
      failure.lines.push_back( "assertion  " + stopped.assertion->expression );
      failure.lines.push_back(
         fmt::format( "at         {}:{}", stopped.assertion->file, stopped.assertion->line ) );
      failure.lines.push_back( "in         " + stopped.assertion->function );
   } else if ( !stopped.output.empty() ) {
      failure.lines.push_back( "printed    " + stopped.output.back() );
   }
   for ( Story::KnownLimit const & limit : outcome_.limits() ) {
      failure.lines.push_back( "limit      " + limit.title + " (docs/limits.md)" );
   }
   result_.failures.push_back( failure );
}

void Judge::take( Story::BadInput const & input ) {
   result_.isOver = true;
   result_.failures.push_back( mistake( input.text ) );
}

void Judge::take( Story::Interrupted const & interrupted ) {
   result_.failures.push_back(
      { "",
        fmt::format( "interrupted in {} {}", nameOf( outcome_.step() ), interrupted.words() ),
        {} } );
}

}  // namespace Testing
