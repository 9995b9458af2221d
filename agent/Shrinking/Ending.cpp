#include <Shrinking/Ending.h>

#include <algorithm>
#include <regex>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace Shrinking {

namespace {

std::string withoutNumbers( std::string const & text ) {
   static std::regex const numbers( "\\b(frame|entry) [0-9]+" );
   return std::regex_replace( text, numbers, "$1 N" );
}

}  // namespace

bool Ending::isLike( Ending const & other ) const {
   if ( !badInput.empty() || stop != other.stop ) {
      return false;
   }
   return stop || ( !other.failed.empty() && std::find( failed.begin(), failed.end(),
                                                        other.failed.front() ) != failed.end() );
}

std::string Ending::words() const {
   if ( stop ) {
      return *stop;
   }
   return failed.empty() ? badInput : failed.front();
}

std::string encoded( Ending const & ending ) {
   nlohmann::json json{ { "failed", ending.failed }, { "badInput", ending.badInput } };
   if ( ending.stop ) {
      json[ "stop" ] = *ending.stop;
   }
   return json.dump( -1, ' ', false, nlohmann::json::error_handler_t::replace );
}

Ending decoded( std::string const & line ) {
   try {
      auto const json = nlohmann::json::parse( line );
      Ending ending{ {}, json.at( "failed" ), json.at( "badInput" ) };
      if ( json.contains( "stop" ) ) {
         ending.stop = json[ "stop" ];
      }
      return ending;
   } catch ( nlohmann::json::exception const & error ) {
      throw std::runtime_error( error.what() );
   }
}

void EndingTaken::onEvent( Story::Event const & event ) {
   std::visit( Story::Overloaded{
                  [ & ]( Story::ExpectationChecked const & expectation ) {
                     if ( !expectation.held ) {
                        ending_.failed.push_back( "expected " + expectation.text + "; " +
                                                  withoutNumbers( expectation.found ) );
                     }
                  },
                  [ & ]( Story::Stopped const & stopped ) { take( stopped ); },
                  [ & ]( Story::BadInput const & input ) { ending_.badInput = input.text; },
                  []( auto const & ) {} },
               event );
}

void EndingTaken::take( Story::Stopped const & stopped ) {
   if ( stopped.isAsExpected && *stopped.isAsExpected ) {
      return;
   }
   if ( stopped.assertion ) {
      ending_.stop = "stopped at assertion " + stopped.assertion->expression + " in " +
                     stopped.assertion->function;
   } else {
      bool const isPrinted = !stopped.isOverTime && !stopped.output.empty();
      ending_.stop = "stopped by " + stopped.reason +
                     ( isPrinted ? ", and printed last: " + stopped.output.back() : "" );
   }
}

}  // namespace Shrinking
