#include <Expectations/PluginReady.h>

#include <Expectations/Evidence.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

Scenario::Choices< bool > const & states() {
   static Scenario::Choices< bool > const choices{
      { "plug-in", "Whether the plug-in has marked its own dependency point." },
      { { "ready", true }, { "waiting", false } }
   };
   return choices;
}

}  // namespace

std::vector< WordList > PluginReady::vocabulary() {
   return { states().list() };
}

void PluginReady::read( Reading & reading, Value const & value ) {
   isReady = choiceOf( reading, value, states() ).value_or( true );
}

std::string PluginReady::description() const {
   return isReady ? "plug-in ready" : "plug-in waiting";
}

Finding PluginReady::check( Evidence const & evidence ) const {
   bool const isReadyNow = evidence.pluginPoint.isReady();
   return { isReadyNow == isReady, isReadyNow ? "it is ready" : "it is not ready" };
}

}  // namespace Expectations
