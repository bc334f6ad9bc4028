// Session - the library set up for one benchmark: initialised, the document
// loaded and compiled, every player tracked and every gesture enabled, and
// closed again at the end. The library is a process-wide singleton, so one
// session at a time.
#pragma once

#include <cstdint>
#include <string>

#include "bench/Workload.h"

namespace PelmoraBench {

class Session {
public:
    // Worker mode enables through the queued calls: they take effect in the
    // worker's first pass.
    Session(bool worker, int players, const std::string& document, FrameClock& clock);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool Ok() const { return m_Error.empty(); }
    const std::string& Error() const { return m_Error; }
    uint32_t Gestures() const { return m_Gestures; }
    // The clock reading at which the gestures were enabled.
    uint32_t EnabledAt() const { return m_EnabledAt; }

private:
    std::string m_Error;
    uint32_t m_Gestures = 0;
    uint32_t m_EnabledAt = 0;
};

// The cached document of `gestures` generated gestures.
const std::string& Document(int gestures);

}  // namespace PelmoraBench
