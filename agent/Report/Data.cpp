#include <Report/Data.h>

#include <array>
#include <map>

#include <Snapshot/RuleText.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

namespace Report {

namespace {

using Story::Json;

Json textOf( std::string const & text ) {
   return Text::printable( text );
}

// The same of a text of several lines.
Json linesIn( std::string const & text ) {
   return Text::printableLines( text );
}

Json textsOf( std::vector< std::string > const & texts ) {
   Json json = Json::array();
   for ( std::string const & text : texts ) {
      json.push_back( textOf( text ) );
   }
   return json;
}

template< typename T > Json orNull( std::optional< T > const & value ) {
   return value ? Json( *value ) : Json();
}

// One list, each element made by `form`.
template< typename T, typename Form >
Json listOf( std::vector< T > const & values, Form const & form ) {
   Json json = Json::array();
   for ( T const & value : values ) {
      json.push_back( form( value ) );
   }
   return json;
}

// --- Tables

Json cellOf( Story::Cell const & cell ) {
   return std::visit( Story::Overloaded{ []( std::monostate ) { return Json(); },
                                         []( U64 number ) { return Json( number ); },
                                         []( std::string const & text ) { return textOf( text ); },
                                         []( std::vector< std::string > const & texts ) {
                                            return textsOf( texts );
                                         } },
                      cell.value );
}

// The answers to a question have most rows in common, so each row stands once.
Json answersOf( std::vector< Story::Table > const & answers ) {
   Json rows = Json::array();
   std::map< std::string, std::size_t > numbers;
   Json versions = Json::array();
   for ( Story::Table const & table : answers ) {
      Json & version = versions.emplace_back( Json::array() );
      for ( auto const & row : table.rows ) {
         Json cells = listOf( row, cellOf );
         auto const [ number, isNew ] = numbers.try_emplace( cells.dump(), rows.size() );
         version.push_back( number->second );
         if ( isNew ) {
            rows.push_back( std::move( cells ) );
         }
      }
   }
   return { { "columns", answers.front().columns }, { "rows", rows }, { "versions", versions } };
}

Json tablesOf( Model const & model ) {
   Json json = Json::object();
   for ( auto const & [ name, answers ] : model.tables ) {
      json[ name ] = answersOf( answers );
   }
   return json;
}

// --- Steps

Json linesOf( std::vector< Line > const & lines ) {
   return listOf( lines, []( Line const & line ) { return Json{ line.kind, line.text }; } );
}

Json changesOf( std::vector< Change > const & changes ) {
   return listOf( changes, []( Change const & change ) {
      return Json{ change.path, change.attribute, orNull( change.key ), orNull( change.from ),
                   orNull( change.to ) };
   } );
}

Json ruleChangesOf( std::vector< RuleChange > const & changes ) {
   return listOf( changes, []( RuleChange const & change ) {
      constexpr std::array kWhat{ "added", "changed", "removed" };
      return Json{ kWhat.at( static_cast< std::size_t >( change.what ) ), change.rule };
   } );
}

Json stepOf( Step const & step ) {
   auto const & begins = step.begins;
   return { { "number", begins ? Json( begins->number ) : Json() },
            { "name", begins ? nameOf( *begins ) : "published before" },
            { "text", textOf( begins ? begins->text
                                     : "the state that is there before the plug-in is loaded" ) },
            { "place", textOf( begins ? begins->place : "" ) },
            { "lines", linesOf( step.lines ) },
            { "changes", changesOf( step.changes ) },
            { "rules", ruleChangesOf( step.rules ) },
            { "frameTable", textsOf( step.frameTable ) },
            { "frames", step.frames },
            { "calls", step.calls },
            { "failedCalls", step.failedCalls },
            { "linesLeftOut", step.linesLeftOut },
            { "changesLeftOut", step.changesLeftOut },
            { "tables", step.tables } };
}

// --- Rules

Json formOf( RuleForm const & form ) {
   return {
      form.step, form.name, form.matches, form.does, orNull( form.priority ), form.isWritten
   };
}

Json ruleOf( RuleLife const & rule ) {
   return { { "unit", rule.key.unit },
            { "group", Chip::groupText( rule.key.group ) },
            { "entry", rule.key.id },
            { "since", rule.since },
            { "until", orNull( rule.until ) },
            { "forms", listOf( rule.forms, formOf ) },
            { "grounds", listOf( rule.grounds, []( Ground const & ground ) {
                 return Json{ ground.step, ground.because };
              } ) } };
}

// --- Frames

Json fateOf( FrameFate const & fate ) {
   Json lookups = listOf( fate.lookups, []( FrameLookup const & lookup ) {
      return Json{ lookup.unit, orNull( lookup.rule ), lookup.classId };
   } );
   Json copies = listOf( fate.copies, []( FrameCopy const & copy ) {
      return Json{ copy.interface,      orNull( copy.unit ), orNull( copy.port ),
                   orNull( copy.vtep ), copy.verdict,        orNull( copy.rule ) };
   } );
   return { orNull( fate.dropReason ), std::move( lookups ), std::move( copies ) };
}

Json frameOf( ListedFrame const & frame ) {
   return { frame.step,
            frame.arrival,
            frame.unit,
            frame.port,
            frame.length,
            orNull( frame.vtep ),
            orNull( frame.vni ),
            orNull( frame.kind ),
            orNull( frame.source ),
            orNull( frame.destination ),
            orNull( frame.vlan ),
            frame.fate,
            orNull( frame.explanation ),
            frame.isTwice ? 1 : 0 };
}

// --- The end

Json stopOf( Ending const & ending ) {
   if ( !ending.stopped ) {
      return {};
   }
   Story::Stopped const & stopped = *ending.stopped;
   Json assertion;
   if ( stopped.assertion ) {
      assertion = { { "expression", textOf( stopped.assertion->expression ) },
                    { "at", textOf( stopped.assertion->file + ":" +
                                    std::to_string( stopped.assertion->line ) ) },
                    { "in", textOf( stopped.assertion->function ) } };
   }
   return { { "text", textOf( stopped.words() ) },
            { "assertion", std::move( assertion ) },
            { "asExpected", orNull( stopped.isAsExpected ) },
            { "traces", listOf( stopped.trace,
                                []( Story::Traced const & line ) {
                                   return textOf( line.handle + " " + std::to_string( line.level ) +
                                                  ": " + line.text );
                                } ) },
            { "output", textsOf( stopped.output ) },
            { "limits", Story::jsonOf( ending.limits ) } };
}

Json endOf( Ending const & ending ) {
   return { { "name", ending.name },
            { "expectations", ending.expectations },
            { "failedExpectations", ending.failedExpectations },
            { "error", linesIn( ending.error ) },
            { "interrupted", textOf( ending.interrupted ) },
            { "stop", stopOf( ending ) } };
}

Json deviceOf( Device const & device ) {
   return { { "units",
              listOf( device.units,
                      []( Device::Unit const & unit ) {
                         return Json{ { "number", unit.number }, { "module", unit.module } };
                      } ) },
            { "underlay", textsOf( device.underlay ) } };
}

}  // namespace

Json dataOf( Model const & model ) {
   return { { "title", textOf( model.title ) },
            { "file", textOf( model.file ) },
            { "description", linesIn( model.description ) },
            { "variant", textOf( model.variant ) },
            { "end", endOf( model.ending ) },
            { "device", deviceOf( model.device ) },
            { "texts", model.texts.all() },
            { "steps", listOf( model.steps, stepOf ) },
            { "tables", tablesOf( model ) },
            { "rules", listOf( model.rules.rules(), ruleOf ) },
            { "rulesLeftOut", model.rules.leftOut() },
            { "frames", listOf( model.frames.frames(), frameOf ) },
            { "fates", listOf( model.frames.fates(), fateOf ) },
            { "trees", model.explanations.trees() },
            { "explained", model.frames.explained() },
            { "totals",
              { { "frames", model.totals.frames },
                { "drops", model.totals.drops },
                { "copies", model.totals.copies } } } };
}

}  // namespace Report
