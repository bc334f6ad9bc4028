// MallocCounter - counts heap allocations of the whole process, on every
// thread, at the C library level: this binary replaces malloc, calloc,
// realloc, the aligned allocators and free, and forwards them to glibc.
// operator new, the shared library's own calls and the worker thread all end
// up here. Counting is off until a window opens.
#pragma once

#include <cstdint>

namespace PelmoraBench {

class MallocWindow {
public:
    MallocWindow();
    ~MallocWindow();
    MallocWindow(const MallocWindow&) = delete;
    MallocWindow& operator=(const MallocWindow&) = delete;

    // Allocations (malloc, calloc, realloc, aligned) since the window opened.
    uint64_t Allocations() const;
    uint64_t Frees() const;

private:
    uint64_t m_Allocations;
    uint64_t m_Frees;
};

}  // namespace PelmoraBench
