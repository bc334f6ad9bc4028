// MulBuffer - a triple buffer between one writing and one reading thread: the
// writer fills its own slot and publishes it as the newest; the reader holds
// the newest published slot until it ends reading. Neither ever touches the
// other's slot, and only index updates are locked, so neither waits for the
// other's work. Older unread slots are simply overwritten.
// Thread-safety: WriteSlot/Commit on the writing side, BeginRead/EndRead on
// the reading side; HostLock serialises several host threads on their side.
#pragma once

#include <cstdint>

#include "engine/CriticalSection.h"

namespace PelmoraLib {

template <class Slot>
class MulBuffer {
public:
    static const uint32_t kNone = 0xFFFFFFFFu;

    MulBuffer() = default;
    MulBuffer(const MulBuffer&) = delete;
    MulBuffer& operator=(const MulBuffer&) = delete;

    Slot& GetSlot(uint32_t index) { return m_Slots[index]; }
    uint32_t WriteIndex() const { return m_Write; }
    Slot& WriteSlot() { return m_Slots[m_Write]; }

    // Publishes the write slot as the newest and moves on to a slot that is
    // neither being read nor the newest.
    void Commit() {
        ScopedLock lock(m_IndexLock);
        m_Latest = m_Write;
        do {
            m_Write = (m_Write + 1) % 3;
        } while (m_Write == m_Reading || m_Write == m_Latest);
    }

    // A reader that begins twice without ending keeps the same slot.
    Slot& BeginRead() {
        ScopedLock lock(m_IndexLock);
        if (m_Reading == kNone) m_Reading = m_Latest;
        return m_Slots[m_Reading];
    }

    void EndRead() {
        ScopedLock lock(m_IndexLock);
        m_Reading = kNone;
    }

    CriticalSection& HostLock() { return m_HostLock; }

private:
    Slot m_Slots[3];
    uint32_t m_Reading = kNone;
    uint32_t m_Write = 2;
    uint32_t m_Latest = 1;
    CriticalSection m_IndexLock;
    CriticalSection m_HostLock;
};

}  // namespace PelmoraLib
