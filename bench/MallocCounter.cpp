#include "bench/MallocCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

std::atomic<int> g_Windows{0};
std::atomic<uint64_t> g_Allocations{0};
std::atomic<uint64_t> g_Frees{0};

inline void NoteAllocation() {
    if (g_Windows.load(std::memory_order_relaxed) > 0) g_Allocations.fetch_add(1, std::memory_order_relaxed);
}

inline void NoteFree(void* block) {
    if (block && g_Windows.load(std::memory_order_relaxed) > 0) g_Frees.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

// glibc's own entry points: forwarding to them keeps the real allocator.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);

void* malloc(size_t size) {
    NoteAllocation();
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    NoteAllocation();
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    NoteAllocation();
    return __libc_realloc(block, size);
}

void* memalign(size_t alignment, size_t size) {
    NoteAllocation();
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    NoteAllocation();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** out, size_t alignment, size_t size) {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) return EINVAL;
    NoteAllocation();
    void* block = __libc_memalign(alignment, size);
    if (!block && size != 0) return ENOMEM;
    *out = block;
    return 0;
}

void free(void* block) {
    NoteFree(block);
    __libc_free(block);
}
}

namespace PelmoraBench {

MallocWindow::MallocWindow() : m_Allocations(g_Allocations.load()), m_Frees(g_Frees.load()) {
    g_Windows.fetch_add(1);
}

MallocWindow::~MallocWindow() { g_Windows.fetch_sub(1); }

uint64_t MallocWindow::Allocations() const { return g_Allocations.load() - m_Allocations; }

uint64_t MallocWindow::Frees() const { return g_Frees.load() - m_Frees; }

}  // namespace PelmoraBench
