#include "support/FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace vesko {
namespace {

size_t allocations_left = 0;  // until one fails; 0 when none is to fail, or it has happened
bool lasting = false;
bool happened = false;

bool FailsNow() {
  if (happened && lasting) return true;
  if (allocations_left == 0 || --allocations_left > 0) return false;
  return happened = true;
}

}  // namespace

FailingAllocation::FailingAllocation(size_t n, Kind kind) {
  happened = false;
  lasting = kind == kLasting;
  allocations_left = n;
}

FailingAllocation::~FailingAllocation() {
  lasting = false;
  allocations_left = 0;
}

bool FailingAllocation::Happened() { return happened; }

}  // namespace vesko

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return vesko::FailsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* operator new(size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
