// CriticalSection - the library's lock: recursive, with a depth counter kept
// for inspection only.
// Thread-safety: that is its purpose.
#pragma once

#include <mutex>

#include "PelmoraExport.h"

namespace PelmoraLib {

class PELMORA_API CriticalSection {
public:
    CriticalSection() = default;
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter();
    void Leave();
    // How many times the owner holds it; meaningful only to the owner.
    int Depth() const { return m_Depth; }

private:
    int m_Depth = 0;
    std::recursive_mutex m_Mutex;
};

// Holds a CriticalSection for a scope.
class ScopedLock {
public:
    explicit ScopedLock(CriticalSection& section) : m_Section(section) { m_Section.Enter(); }
    ~ScopedLock() { m_Section.Leave(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    CriticalSection& m_Section;
};

}  // namespace PelmoraLib
