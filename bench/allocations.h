#pragma once

#include <cstddef>

namespace vardel {

/// How often this program has asked for heap memory so far. Its operator new is replaced to count.
std::size_t AllocationCount();
/// Whether whoever asks from now on gets none.
void RefuseAllocations(bool refuse);

}  // namespace vardel
