#include <sys/mman.h>

#include <memory>
#include <new>

#include "host/workers/Progress.h"

namespace kbx {

SharedProgress::SharedProgress(std::size_t count) : _count(count) {
  static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
  void* memory = ::mmap(nullptr, count * sizeof(Progress), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  _places = static_cast<Progress*>(memory);
  std::uninitialized_default_construct_n(_places, count);
}

SharedProgress::~SharedProgress() { ::munmap(_places, _count * sizeof(Progress)); }

}  // namespace kbx
