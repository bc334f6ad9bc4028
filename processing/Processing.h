// Processing - one processing block compiled for one player: its functions in
// configuration order (later ones see what earlier ones wrote) and whether it
// runs on every frame or only on a full update.
// Thread-safety: none; run by the thread that updates its player.
#pragma once

#include <vector>

#include "processing/BaseFunction.h"

namespace PelmoraLib {

class PELMORA_API Processing {
public:
    Processing() = default;
    explicit Processing(bool updatePerFrame) : m_IsUpdatePerFrame(updatePerFrame) {}
    ~Processing();
    // A block owns its functions; copies would free them twice.
    Processing(const Processing&) = delete;
    Processing& operator=(const Processing&) = delete;

    bool IsUpdatePerFrame() const { return m_IsUpdatePerFrame; }
    void Run();
    void RunAndPrint();
    void Clear();

    // Takes ownership; used by the configuration compiler.
    void AddFunction(BaseFunction* function) { m_Functions.push_back(function); }
    size_t GetFunctionNum() const { return m_Functions.size(); }

private:
    bool m_IsUpdatePerFrame = false;
    std::vector<BaseFunction*> m_Functions;
};

}  // namespace PelmoraLib
