// Something that the agent was given is wrong; what() says what, where, and what would be right.
#pragma once

#include <stdexcept>

namespace Story {

class InputError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

}  // namespace Story
