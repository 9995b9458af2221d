// Random events on a busy switch, one after the other, for a long time: the rules stay those that
// the state calls for, and the memory stays flat.
//
// usage: soak-events VARIANT SEED COUNT
//
// The agent runs in this process, with the plug-in, and nobody keeps the story. The rules are
// audited behind every thousandth event and at the end. The memory is that of the process behind
// 100000 events and at the end: by then a switch has met all that it keeps, so that more memory at
// the end is memory that each event leaves behind. Exit code 1 for a difference, or when memory has
// grown by more than one part in fifty.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <BusySwitch.h>
#include <Host/Agent.h>
#include <Process/RingMemory.h>
#include <Steps/Reader.h>
#include <Story/Observer.h>

#include <fmt/format.h>
#include <unistd.h>

namespace {

std::size_t residentKib() {
   std::size_t all = 0;
   std::size_t resident = 0;
   std::ifstream( "/proc/self/statm" ) >> all >> resident;
   return resident * static_cast< std::size_t >( sysconf( _SC_PAGESIZE ) ) / 1024;
}

// All differences count, those of a known cause too: nothing here causes one.
U32 rulesOf( Host::Agent const & agent, unsigned long event ) {
   Audit::Report const report = agent.audit();
   if ( report.differences.empty() ) {
      return report.rules;
   }
   Story::Difference const & first = report.differences.front();
   throw std::runtime_error(
      fmt::format( "{} differences behind event {}; the first: {} of rule '{}', {} is '{}' and "
                   "should be '{}', {}",
                   report.differences.size(), event, nameOf( first.kind ), first.rule, first.field,
                   first.actual, first.expected, first.because ) );
}

void run( std::string const & variant, std::uint64_t seed, unsigned long count ) {
   constexpr unsigned long kBetweenAudits = 1000;
   constexpr unsigned long kSettled = 100'000;
   if ( count < 2 * kSettled ) {
      throw std::runtime_error( fmt::format( "give a COUNT of at least {}", 2 * kSettled ) );
   }
   Soak::BusySwitch busy( variant, seed );
   Scenario::Model const model =
      Steps::readScenarioText( busy.scenario(), "busy.yaml", busy.events() );
   std::size_t const first = model.ownSteps;
   Host::AgentConfig config;
   config.scenario = "busy.yaml";
   config.plugin = VORNAL_BINARY_DIR "/VornalEvpn.so";
   config.lastStep = static_cast< U32 >( first );
   Process::RingMemory const ring;
   Story::Observers nobody( {} );
   Host::Agent agent( model, config, ring.bytes(), nobody );
   agent.begin();
   std::size_t early = 0;
   U32 most = 0;
   for ( unsigned long event = 1; event <= count; ++event ) {
      agent.carryOut( model.steps[ first + busy.next() ] );
      if ( event % kBetweenAudits == 0 ) {
         most = std::max( most, rulesOf( agent, event ) );
      }
      if ( event == kSettled ) {
         early = residentKib();
      }
   }
   std::size_t const late = residentKib();
   std::cout << fmt::format(
      "{} events on a switch of variant {}, {} rules at the end, at most {}; memory {} KiB behind "
      "{} of them, {} KiB at the end\n",
      count, variant, rulesOf( agent, count ), most, early, kSettled, late );
   if ( late > early + early / 50 ) {
      throw std::runtime_error( "the memory has grown" );
   }
}

}  // namespace

int main( int argc, char ** argv ) {
   if ( argc != 4 ) {
      std::cerr << "usage: soak-events VARIANT SEED COUNT\n";
      return EXIT_FAILURE;
   }
   try {
      run( argv[ 1 ], std::stoull( argv[ 2 ] ), std::stoul( argv[ 3 ] ) );
   } catch ( std::exception const & error ) {
      std::cerr << "soak-events: " << error.what() << '\n';
      return EXIT_FAILURE;
   }
   // The plug-in's process ends with the program, as on a switch.
   std::cout.flush();
   _exit( EXIT_SUCCESS );
}
