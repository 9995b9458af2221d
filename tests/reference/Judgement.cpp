#include <Judgement.h>

#include <algorithm>

#include <ByState/ByState.h>
#include <Play.h>
#include <Steps/Reader.h>

namespace {

using Reference::Event;
using Reference::Interface;
using Texts = std::vector< std::string >;

// "expected X, found nothing", for each text that only one of the two has.
template< typename Some >
void compare( char const * what, Some expected, Some found, Texts & differences ) {
   std::sort( expected.begin(), expected.end() );
   std::sort( found.begin(), found.end() );
   Texts missing;
   Texts surplus;
   std::set_difference( expected.begin(), expected.end(), found.begin(), found.end(),
                        std::back_inserter( missing ) );
   std::set_difference( found.begin(), found.end(), expected.begin(), expected.end(),
                        std::back_inserter( surplus ) );
   for ( std::string const & text : missing ) {
      differences.push_back( std::string( what ) + " that must be there: " + text );
   }
   for ( std::string const & text : surplus ) {
      differences.push_back( std::string( what ) + " that must not be there: " + text );
   }
}

Texts textsOf( std::multiset< std::string > const & all ) {
   return { all.begin(), all.end() };
}

class Judge {
 public:
   Judge( Reference::Told const & told, Run::Document const & run, Claim claim )
         : told_( told ), run_( run ), claim_( claim ), switch_( told.device ) {
      if ( told.forwarding ) {
         forwarding_ = *told.forwarding;
      }
      for ( Event const & event : told.before ) {
         switch_.happens( event );
      }
   }

   Judgement judgement() {
      noOpinion_ = told_.noOpinion;
      for ( std::size_t n = 0; n < told_.steps.size() && isGoingOn( n ); ++n ) {
         take( told_.steps[ n ], n + 1 );
      }
      compareEnd();
      return result_;
   }

 private:
   // Counts the rest of the scenario when there is no opinion on it.
   bool isGoingOn( std::size_t n ) {
      if ( noOpinion_.empty() ) {
         noOpinion_ = told_.steps[ n ].noOpinion;
      }
      if ( !noOpinion_.empty() ) {
         noOpinionOnSteps( noOpinion_, told_.steps.size() - n );
         return false;
      }
      // The last step of a run that ended by a wrong input is the one that was refused.
      std::size_t const carriedOut = run_.steps.size() - ( run_.error.empty() ? 0 : 1 );
      return !result_.isOff() && !switch_.stop() && n + 1 < carriedOut;
   }

   void noOpinionOnSteps( std::string const & reason, std::size_t steps ) {
      result_.counts.noOpinion[ reason ] += static_cast< unsigned >( steps );
      result_.counts.stepsWithoutOpinion += static_cast< unsigned >( steps );
   }

   void take( Reference::StepTold const & told, std::size_t number ) {
      Run::Step const & found = run_.steps[ number ];
      play( told, found.grants, switch_, forwarding_ );
      result_.step = number;
      ++result_.counts.steps;
      compareStop( number );
      compareCalls( found );
      compareRules( found );
      compareRest( found );
      for ( Run::Frame const & frame : found.frames ) {
         take( frame );
      }
   }

   // --- Comparisons

   void compareStop( std::size_t number ) {
      bool const isMet = run_.stop && run_.stop->step == number;
      auto const & foretold = switch_.stop();
      if ( isMet != foretold.has_value() ) {
         differ( isMet
                    ? "it must not stop, but did at '" + run_.stop->expression + "' in " +
                         run_.stop->function + "; " + run_.stop->output
                    : "it must stop at '" + foretold->expression + "' in " + foretold->function );
         return;
      }
      if ( !isMet ) {
         return;
      }
      bool const isSame =
         foretold->function.empty()
            ? run_.stop->output.ends_with( foretold->expression )
            : run_.stop->expression == foretold->expression &&
                 run_.stop->function.find( foretold->function + "(" ) != std::string::npos;
      if ( isSame ) {
         ++result_.counts.stops;
      } else {
         differ( "it must stop at '" + foretold->expression + "' in " + foretold->function +
                 ", but did at '" + run_.stop->expression + "' in " + run_.stop->function + "; " +
                 run_.stop->output );
      }
   }

   // A run that goes on to the end has all its steps, and that of its end.
   void compareEnd() {
      bool const isJudged = noOpinion_.empty() && !result_.isOff() && !switch_.stop();
      if ( isJudged && ( !run_.error.empty() || run_.steps.size() <= told_.steps.size() ) ) {
         result_.step = run_.steps.empty() ? 0 : run_.steps.size() - 1;
         differ( "the run must go on, but ended here. " + run_.error );
      }
   }

   void compareCalls( Run::Step const & found ) {
      Texts expected;
      for ( Reference::Call const & call : switch_.takeCalls() ) {
         expected.push_back( call.text() );
      }
      result_.counts.calls += static_cast< unsigned >( expected.size() );
      if ( expected == found.calls ) {
         return;
      }
      std::size_t const before = result_.differences.size();
      compare( "a call", expected, found.calls, result_.differences );
      if ( result_.differences.size() == before ) {
         std::size_t n = 0;
         while ( expected[ n ] == found.calls[ n ] ) {
            ++n;
         }
         differ( "calls in another order: call " + std::to_string( n + 1 ) + " must be " +
                 expected[ n ] + ", and is " + found.calls[ n ] );
      }
   }

   void compareRules( Run::Step const & found ) {
      std::multiset< std::string > expected;
      for ( auto const & [ id, rule ] : switch_.rules() ) {
         expected.insert( rule.text() );
      }
      result_.counts.rules += static_cast< unsigned >( expected.size() );
      compare( "a rule", textsOf( expected ), textsOf( found.rules ), result_.differences );
      if ( !switch_.isReady() ) {
         return;
      }
      std::multiset< std::string > byState;
      for ( Reference::Rule const & rule : rulesByState( told_.device, switch_.facts() ) ) {
         byState.insert( rule.text() );
      }
      result_.counts.stepsOffTheState += byState == expected ? 0U : 1U;
      if ( claim_ == Claim::state ) {
         compare( "a rule (by the state)", textsOf( byState ), textsOf( found.rules ),
                  result_.differences );
      }
   }

   void compareRest( Run::Step const & found ) {
      Texts requests;
      for ( Reference::Vtep const & vtep : switch_.requests() ) {
         requests.push_back( vtep.address() );
      }
      if ( switch_.isReady() ) {
         compare( "a class-id request", requests,
                  Texts( found.requests.begin(), found.requests.end() ), result_.differences );
      }
      compare( "a log line", switch_.takeLog(), found.log, result_.differences );
      if ( !found.pass.empty() && !switch_.stop() && found.pass != switch_.pass() ) {
         differ( "the verification pass must be " + switch_.pass() + ", and is " + found.pass );
      }
   }

   // --- Frames

   void take( Run::Frame const & found ) {
      if ( !found.dropReason.empty() ) {
         noOpinionOnFrame( "a frame that the switch does not forward at all" );
      } else if ( arePortsDoubled() ) {
         noOpinionOnFrame( "a frame while two interfaces have one port" );
      } else if ( found.frame.hasSeveralReceivers() ) {
         ++result_.counts.frames;
         takeFlooded( found );
      } else {
         ++result_.counts.frames;
         takeUnicast( found );
      }
   }

   void noOpinionOnFrame( char const * reason ) { ++result_.counts.noOpinion[ reason ]; }

   bool arePortsDoubled() const {
      std::set< Reference::Port > ports;
      return std::any_of( switch_.facts().port.begin(), switch_.facts().port.end(),
                          [ & ]( auto const & one ) {
                             return !ports.insert( one.second ).second;
                          } );
   }

   static Run::Place const * placeAt( Run::Frame const & found, Interface const & intf ) {
      auto const place =
         std::find_if( found.places.begin(), found.places.end(), [ & ]( Run::Place const & one ) {
            return one.vtep.empty() && one.intf == intf.name();
         } );
      return place == found.places.end() ? nullptr : &*place;
   }

   void takeFlooded( Run::Frame const & found ) {
      std::set< Interface > reached;
      for ( Run::Place const & place : found.places ) {
         if ( place.vtep.empty() && place.isSent() ) {
            reached.insert( Interface( place.intf ) );
         }
      }
      std::set< Interface > expected;
      for ( Interface const & intf : floodedTo( switch_.facts(), forwarding_, found.frame ) ) {
         Run::Place const * const place = placeAt( found, intf );
         if ( !place || !place->unit ||
              !isKeptBack( switch_, found.frame, *place->unit, place->port ) ) {
            expected.insert( intf );
         }
      }
      compareReached( found, "by the rules", expected, reached );
      if ( claim_ == Claim::state && switch_.isReady() ) {
         compareReached( found, "by the state",
                         mayReach( switch_.facts(), forwarding_, found.frame ), reached );
      }
      compareVteps( found );
   }

   void compareReached( Run::Frame const & found, char const * why,
                        std::set< Interface > const & expected,
                        std::set< Interface > const & reached ) {
      Texts must;
      Texts does;
      for ( Interface const & intf : expected ) {
         must.push_back( "frame " + std::to_string( found.number ) + " at " + intf.name() );
      }
      for ( Interface const & intf : reached ) {
         does.push_back( "frame " + std::to_string( found.number ) + " at " + intf.name() );
      }
      compare( ( "a copy (" + std::string( why ) + ")" ).c_str(), must, does, result_.differences );
   }

   void compareVteps( Run::Frame const & found ) {
      Texts must;
      Texts does;
      for ( auto const & vtep : floodedThrough( switch_.facts(), forwarding_, found.frame ) ) {
         must.push_back( vtep.address() );
      }
      for ( Run::Place const & place : found.places ) {
         if ( !place.vtep.empty() && place.isSent() ) {
            does.push_back( place.vtep );
         }
      }
      compare( "a copy to VTEP", must, does, result_.differences );
   }

   // One receiver: wherever that is, only the rules can keep the frame back.
   void takeUnicast( Run::Frame const & found ) {
      for ( Run::Place const & place : found.places ) {
         if ( place.vtep.empty() && place.unit && ( place.isSent() || place.isKeptBack() ) ) {
            bool const isKept = isKeptBack( switch_, found.frame, *place.unit, place.port );
            if ( isKept != place.isKeptBack() ) {
               differ( "frame " + std::to_string( found.number ) + ", " + found.frame.kind +
                       ( isKept ? ", must be kept back at " : ", must leave by " ) + place.intf );
            }
         }
      }
   }

   void differ( std::string const & difference ) { result_.differences.push_back( difference ); }

   Reference::Told const & told_;
   Run::Document const & run_;
   Claim claim_;
   Reference::Switch switch_;
   Reference::Forwarding forwarding_;
   std::string noOpinion_;
   Judgement result_;
};

}  // namespace

void Counts::add( Counts const & other ) {
   steps += other.steps;
   calls += other.calls;
   rules += other.rules;
   frames += other.frames;
   stops += other.stops;
   stepsWithoutOpinion += other.stepsWithoutOpinion;
   stepsOffTheState += other.stepsOffTheState;
   for ( auto const & [ reason, times ] : other.noOpinion ) {
      noOpinion[ reason ] += times;
   }
}

std::string Counts::text() const {
   std::string text = std::to_string( steps ) + " steps, " + std::to_string( calls ) + " calls, " +
                      std::to_string( rules ) + " rules, " + std::to_string( frames ) +
                      " frames, " + std::to_string( stops ) + " stops foretold; " +
                      std::to_string( stepsOffTheState ) + " steps off the plain state";
   for ( auto const & [ reason, times ] : noOpinion ) {
      text += "\n   no opinion, " + std::to_string( times ) + " times: " + reason;
   }
   return text;
}

std::string Judgement::text() const {
   std::string text = "step " + std::to_string( step ) + ":";
   for ( std::string const & difference : differences ) {
      text += "\n   " + difference;
   }
   return text;
}

Judgement judge( Reference::Told const & told, Run::Document const & run, Claim claim ) {
   return Judge( told, run, claim ).judgement();
}

std::set< std::string > requestsBefore( Reference::Told const & told ) {
   std::set< std::string > requests;
   for ( Reference::Vtep const & vtep : told.requestsBefore ) {
      requests.insert( vtep.address() );
   }
   return requests;
}

Judgement judgementOf( std::filesystem::path const & scenario, Claim claim ) {
   Reference::Told const told = Reference::told( Steps::readScenario( scenario ) );
   return judge( told, Run::of( scenario, requestsBefore( told ) ), claim );
}
