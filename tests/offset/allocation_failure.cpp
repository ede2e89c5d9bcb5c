// Tarnsysm: planar computational geometry for 2D drafting.
// Global allocation that can be told to fail once, for the tests of out-of-memory handling.
#include <atomic>
#include <cstdlib>
#include <new>

namespace tarnsysm_test {

namespace {
std::atomic<bool> failNext{false};
}  // namespace

void failNextAllocation(bool fail) {
  failNext = fail;
}

}  // namespace tarnsysm_test

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

void* operator new(std::size_t size) {
  if (tarnsysm_test::failNext.exchange(false))
    throw std::bad_alloc();
  if (void* p = std::malloc(size ? size : 1))
    return p;
  throw std::bad_alloc();
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void operator delete(void* p) noexcept {
  std::free(p);
}

void operator delete[](void* p) noexcept {
  std::free(p);
}

void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept {
  std::free(p);
}
