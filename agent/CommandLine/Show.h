// `vornal show`: runs a scenario, up to a step if one is named, and shows the state of the switch
// then: an entity as a tree, or the answer to a question (Questions/Table.h) as a table.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CommandLine/Moment.h>
#include <CommandLine/ScenarioWords.h>
#include <StateDatabase/EntityPath.h>
#include <Story/Event.h>

namespace CommandLine {

class Show final : public ScenarioCommand {
 public:
   // What can be shown: entities, and the answers to all questions.
   static std::vector< std::string_view > subjects();

   void declare( CLI::App & app ) override;
   std::vector< std::string_view > choicesOf( std::string_view word ) const override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   // Rows whose cell in that column is the text, or holds it.
   struct Filter {
      std::string column;
      std::string text;  // empty: all rows
   };

   void checkFilters() const;
   Host::AgentConfig::Show subject() const;
   void print( Story::Table table, std::ostream & out ) const;
   void print( std::vector< Story::EntityShown > const & entities, std::ostream & out ) const;

   std::string what_;
   Questions::Row const * question_ = nullptr;  // nullptr: entities
   Moment after_{ "--after" };
   std::vector< Filter > filters_;
   std::string pathText_;
   std::optional< StateDatabase::EntityPath > path_;  // nothing: the paths at which entities are
};

}  // namespace CommandLine
