#include "bench/AllocationCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define PELMORA_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define PELMORA_TEST_SANITIZED 1
#endif
#endif

namespace {

std::atomic<bool> g_Counting{false};
std::atomic<uint64_t> g_Allocations{0};

void Note() {
    if (g_Counting.load(std::memory_order_relaxed)) g_Allocations.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

#ifdef PELMORA_TEST_SANITIZED
// Declared here: g++ does not ship the sanitizer interface headers.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*, size_t),
                                                        void (*free_hook)(const volatile void*));

namespace {

void OnMalloc(const volatile void*, size_t) { Note(); }
void OnFree(const volatile void*) {}

[[maybe_unused]] const bool g_HooksInstalled = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree) != 0;

}  // namespace
#else
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t size) {
    Note();
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    Note();
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    Note();
    return __libc_realloc(block, size);
}

void* memalign(size_t alignment, size_t size) {
    Note();
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    Note();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** out, size_t alignment, size_t size) {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0) return EINVAL;
    Note();
    void* block = __libc_memalign(alignment, size);
    if (!block && size != 0) return ENOMEM;
    *out = block;
    return 0;
}
}
#endif

namespace PelmoraBench {

AllocationCounter::AllocationCounter() : m_Start(g_Allocations.load()) { g_Counting.store(true); }

AllocationCounter::~AllocationCounter() { g_Counting.store(false); }

uint64_t AllocationCounter::Count() const { return g_Allocations.load() - m_Start; }

}  // namespace PelmoraBench
