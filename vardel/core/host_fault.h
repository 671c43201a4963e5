#pragma once

#include <cstdint>
#include <exception>

namespace vardel {

/// The numbers under which a call can fail.
enum class Fault : std::int32_t {
  InvalidCall = 5,       ///< a character taken from an empty text, a negative text length
  Overflow = 6,          ///< a value that does not fit its type, a character without a code
  OutOfMemory = 7,       ///< never thrown: the library lets std::bad_alloc pass
  OutOfRange = 9,        ///< an index or size out of range
  TypeMismatch = 13,     ///< non-numeric value, malformed hexadecimal text, wrong kind of argument
  ObjectNotSet = 91,     ///< a call on an object that is not set
  ObjectRequired = 424,  ///< a lookup or check that has no object to work on
};

/// Ends a call that cannot give a result: the one exception type that the library itself throws.
/// Content errors (a facility code out of range, a read that is too short) are never thrown; they
/// are recorded in an error pair.
class HostFault : public std::exception {
 public:
  explicit HostFault(Fault fault) noexcept : fault_(fault) {}

  Fault Number() const noexcept { return fault_; }
  /// The fixed English description of the number.
  const char* what() const noexcept override;

 private:
  Fault fault_;
};

/// The object behind `pointer`; a null pointer is fault 91.
template <class T>
T& RequireObject(T* pointer) {
  if (pointer == nullptr) throw HostFault(Fault::ObjectNotSet);
  return *pointer;
}

}  // namespace vardel
