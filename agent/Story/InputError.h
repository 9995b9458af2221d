// The agent was given wrong input; what() tells the mistake, the place and the remedy.
#pragma once

#include <stdexcept>

namespace Story {

class InputError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

}  // namespace Story
