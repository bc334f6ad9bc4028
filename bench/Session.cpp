#include "bench/Session.h"

#include <map>

namespace PelmoraBench {

Session::Session(bool worker, int players, const std::string& document, FrameClock& clock) {
    clock.Install();
    GestureConfigParam param = MakeParam(worker, players);
    InitPelmora(&param);
    if (!LoadConfigData(document.c_str())) {
        m_Error = std::string("the document does not load: ") + GetLastConfigError();
        return;
    }
    if (!StartGestureWork()) {
        m_Error = "the document does not compile";
        return;
    }
    m_Gestures = static_cast<uint32_t>(GetGestureNum(0));
    m_EnabledAt = clock.Now();
    for (int p = 0; p < players; ++p) {
        if (worker) {
            SetPlayer(p, true);
            for (uint32_t g = 0; g < m_Gestures; ++g) SetPlayerGesture(p, g, true);
        } else {
            SetPlayerImmediate(p, true);
            for (uint32_t g = 0; g < m_Gestures; ++g) SetPlayerGestureImmediate(p, g, true);
        }
    }
}

Session::~Session() {
    ClosePelmora();
    FrameClock::Uninstall();
}

const std::string& Document(int gestures) {
    static std::map<int, std::string> documents;
    auto found = documents.find(gestures);
    if (found == documents.end()) found = documents.emplace(gestures, MakeDocument(MakeGestures(gestures))).first;
    return found->second;
}

}  // namespace PelmoraBench
