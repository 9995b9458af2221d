// LiveNames: the names that exist on the switch of a conversation now, for completion.
//
// They are the answers of a run of the steps that are done, as every answer is, so asking changes
// nothing. Answers are kept until the steps change. A run that takes longer than kPatience gives no
// names.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Conversation.h>

namespace CommandLine {

class LiveNames {
 public:
   static constexpr std::chrono::milliseconds kPatience{ 1000 };

   // The conversation must outlive it.
   explicit LiveNames( Conversation const & conversation ) : conversation_( conversation ) {}

   // Interfaces whose name begins so: "Ethernet", "Port-Channel", "Vxlan".
   std::vector< std::string > interfaces( std::string_view kind );
   std::vector< std::string > vteps();
   // The paths of entities that begin so, as far as the next entity.
   std::vector< std::string > paths( std::string const & begun );
   std::vector< std::string > attributes( std::string const & path );

 private:
   template< typename Event, typename Show > std::vector< Event > asked( Show const & show ) const;
   void refresh();
   std::vector< std::string > const & keys();
   std::vector< std::string > const & roots();
   Story::EntityTree const & entityAt( std::string const & path );

   Conversation const & conversation_;
   std::size_t changes_ = 0;  // of the session, when the names were found
   std::optional< std::vector< std::string > > keys_;
   std::optional< std::vector< std::string > > roots_;
   std::map< std::string, Story::EntityTree > entities_;
};

}  // namespace CommandLine
