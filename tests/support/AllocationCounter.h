// AllocationCounter - counts heap allocations made on any thread while a scope
// is open, at the malloc level (operator new, aligned allocations and the
// shared library's own calls included); shared by the tests and bench/.
// Under a sanitizer it uses the sanitizer's allocation hooks; otherwise it
// replaces the C library's allocators, forwarding to glibc's own entry points.
// Thread-safety: counters are atomic; open scopes from one thread at a time.
#pragma once

#include <cstdint>

namespace PelmoraTest {

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

}  // namespace PelmoraTest
