// AllocationCounter - counts heap allocations made on any thread while a scope
// is open, at the malloc level (operator new included). Under a sanitizer
// it uses the sanitizer's allocation hooks; otherwise it replaces malloc,
// calloc and realloc, forwarding to the C library.
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
