#include "engine/WakeEvent.h"

namespace PelmoraLib {

void WakeEvent::Signal() {
    {
        std::lock_guard<std::mutex> lock(m_Mutex);
        m_Pending = true;
    }
    m_Condition.notify_one();
}

void WakeEvent::Wait() {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_Condition.wait(lock, [this] { return m_Pending; });
    m_Pending = false;
}

void WakeEvent::Reset() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Pending = false;
}

}  // namespace PelmoraLib
