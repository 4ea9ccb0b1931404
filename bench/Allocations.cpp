#include "bench/Allocations.hpp"

#include <cstdlib>
#include <new>

// In a file of its own, so that no caller sees that `new` is malloc and warns of the mix.
namespace {
long allocations = 0;
}

long allocationCount() {
  return allocations;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
