// What happened, in words for people: one line for each kind of event that has one.
#pragma once

#include <string>

#include <Story/Event.h>

namespace Story {

std::string wordsOf( PluginLoaded const & event );
std::string wordsOf( MountAsked const & event );
std::string wordsOf( MountsDone const & event );
std::string wordsOf( EntityLookedUp const & event );
std::string wordsOf( SharedEntityAsked const & event );
std::string wordsOf( TcamGroupAsked const & event );
std::string wordsOf( VariantChosen const & event );
std::string wordsOf( DependencyPointReady const & event );
std::string wordsOf( PublishedChange const & event );
std::string wordsOf( Traced const & event );
std::string wordsOf( Logged const & event );
std::string wordsOf( ExpectationChecked const & event );
std::string wordsOf( ForeignEntriesAre const & event );
std::string wordsOf( OutputLine const & event );
std::string wordsOf( PluginPass const & event );
std::string wordsOf( Stopped const & event );
std::string wordsOf( Interrupted const & event );

// "step 3", "start-up", "verification", "teardown"; "the beginning" when there is none yet.
std::string nameOf( StepBegins const & step );
std::string nameOf( std::optional< StepBegins > const & step );

// "1 rule", "2 rules".
std::string counted( std::size_t count, std::string const & thing );

}  // namespace Story
