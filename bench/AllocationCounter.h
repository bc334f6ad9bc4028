// AllocationCounter - counts heap allocations made on any thread while a scope
// is open, at the malloc level (operator new, aligned allocations and the
// shared library's own calls included); the benchmarks' and the
// steady-state test's one counter.
// Under a sanitizer it uses the sanitizer's allocation hooks; otherwise it
// replaces the C library's allocators, forwarding to glibc's own entry points.
// Thread-safety: counters are atomic; open scopes from one thread at a time.
#pragma once

#include <cstdint>

namespace PelmoraBench {

class AllocationCounter {
public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    uint64_t Count() const;

private:
    uint64_t m_Start;
};

}  // namespace PelmoraBench
