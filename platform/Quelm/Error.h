// The framework's exceptions. Each names the mistake in what(); none is thrown for a broken
// invariant (see Assert.h), all are thrown before anything is changed.
#pragma once

#include <stdexcept>
#include <string>

namespace Quelm {

class Error : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

// A reference argument that must not be empty was.
class NullArgumentError : public Error {
 public:
   using Error::Error;
};

// A number outside the range of its type.
class RangeError : public Error {
 public:
   using Error::Error;
};

// The hash of a type that has none was asked for.
class UnhashableError : public Error {
 public:
   using Error::Error;
};

// A text that is not the text form of the type it was read as.
class TextError : public Error {
 public:
   using Error::Error;
};

// A text form whose attribute could not be read; what() names the attribute.
class AttributeTextError : public TextError {
 public:
   AttributeTextError( std::string const & attribute, std::string const & reason )
         : TextError( "cannot read attribute '" + attribute + "': " + reason ) {}
};

// The generic interface was asked for something an entity does not have or does not allow.
class AccessError : public Error {
 public:
   using Error::Error;
};

}  // namespace Quelm
