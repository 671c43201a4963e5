#pragma once

#include <vardel/core/host_fault.h>

namespace vardel {

/// The number of the host fault that ends the call, or 0 when it returns.
template <class Call, class... Arguments>
int FaultOf(const Call& call, const Arguments&... arguments) try {
  call(arguments...);
  return 0;
} catch (const HostFault& fault) {
  return static_cast<int>(fault.Number());
}

}  // namespace vardel
