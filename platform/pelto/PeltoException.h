// The exceptions of the shared-table library. Nothing in the QoS logic catches them: a corrupt
// table or a write through a read-only view ends the agent, which the platform restarts.
#pragma once

#include <stdexcept>
#include <string>

namespace Pelto {

class Exception : public std::runtime_error {
 public:
   explicit Exception( std::string const& what ) : std::runtime_error( what ) {}
};

// A reader ran into a record that is inconsistent: torn by a writer, or damaged.
class CorruptionDetectedException : public Exception {
 public:
   using Exception::Exception;
};

// A write through a view opened read-only.
class NoPermissionException : public Exception {
 public:
   using Exception::Exception;
};

}  // namespace Pelto
