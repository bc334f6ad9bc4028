#include "engine/CriticalSection.h"

namespace PelmoraLib {

void CriticalSection::Enter() {
    m_Mutex.lock();
    ++m_Depth;
}

// The depth changes while the lock is still held, so it is never raced.
void CriticalSection::Leave() {
    --m_Depth;
    m_Mutex.unlock();
}

}  // namespace PelmoraLib
