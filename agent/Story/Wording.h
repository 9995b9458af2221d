// Words that several texts for people share.
#pragma once

#include <optional>
#include <string>

#include <Story/RunEvents.h>

namespace Story {

// "step 3", "start-up", "verification", "teardown"; "the beginning" before the first step.
std::string nameOf( StepBegins const & step );
std::string nameOf( std::optional< StepBegins > const & step );

// "1 rule", "2 rules".
std::string counted( std::size_t count, std::string const & thing );

}  // namespace Story
