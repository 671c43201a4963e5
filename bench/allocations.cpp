#include "bench/allocations.h"

#include <cstdlib>
#include <new>

namespace {
std::size_t count = 0;
bool isRefused = false;
}  // namespace

std::size_t vardel::AllocationCount() { return count; }
void vardel::RefuseAllocations(bool refuse) { isRefused = refuse; }

void* operator new(std::size_t size) {
  ++count;
  if (void* const memory = isRefused ? nullptr : std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
