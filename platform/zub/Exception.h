// The exceptions the runtime throws. Nothing in the QoS logic catches them: they are
// programming errors that end the agent.
#pragma once

#include <stdexcept>

#include "NevQos/platform/zub/String.h"

namespace Zub {

class Exception : public std::runtime_error {
 public:
   explicit Exception( String const& what ) : std::runtime_error( what.stdString() ) {}
};

// A value outside its type's range: an index space full, a bad enumeration text.
class RangeException : public Exception {
 public:
   using Exception::Exception;
};

// A child re-instantiated under a key in use with different constructor parameters.
class NameInUseException : public Exception {
 public:
   using Exception::Exception;
};

// A null member handed to the mutator of a watched collection.
class NullParameterException : public Exception {
 public:
   using Exception::Exception;
};

// Text that does not have the form a parser expects.
class ParseException : public Exception {
 public:
   using Exception::Exception;
};

[[noreturn]] void throwRangeException( String const& what );
[[noreturn]] void throwParseException( String const& what );
// `param` is the attribute's name without its leading underscore; the values are their texts.
[[noreturn]] void throwNameInUseException( String const& param, String const& newValue,
                                           String const& oldValue );
// `param` is the parameter's name without its leading underscore, `attribute` the full name of
// the collection, such as "Nev::QosBasicSm::status".
[[noreturn]] void throwNullParameterException( String const& param, String const& attribute );

}  // namespace Zub
