#include <vardel/core/host_fault.h>

namespace vardel {

const char* HostFault::what() const noexcept {
  switch (fault_) {
    case Fault::InvalidCall:
      return "Invalid procedure call or argument";
    case Fault::Overflow:
      return "Overflow";
    case Fault::OutOfMemory:
      return "Out of memory";
    case Fault::OutOfRange:
      return "Subscript out of range";
    case Fault::TypeMismatch:
      return "Type mismatch";
    case Fault::ObjectNotSet:
      return "Object variable not set";
    case Fault::ObjectRequired:
      return "Object required";
  }
  return "Unknown fault";
}

}  // namespace vardel
