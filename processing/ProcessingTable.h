// ProcessingTable - one player's compiled processing blocks: the full list
// (owned) runs on a full update, the per-frame list (the flagged blocks) on
// every other frame; the two never both run for one frame.
// Thread-safety: none; filled while compiling, then run by the thread that
// updates the player.
#pragma once

#include <vector>

#include "processing/Processing.h"

namespace PelmoraLib {

class PELMORA_API ProcessingTable {
public:
    ProcessingTable() = default;
    ~ProcessingTable();
    ProcessingTable(const ProcessingTable&) = delete;
    ProcessingTable& operator=(const ProcessingTable&) = delete;

    void FrameUpdate();
    void UpdateAll();
    void Clear();

    // Takes ownership; used by the configuration compiler.
    void AddProcessing(Processing* processing);
    size_t GetProcessingNum() const { return m_All.size(); }
    size_t GetFrameProcessingNum() const { return m_PerFrame.size(); }

private:
    static void RunList(const std::vector<Processing*>& list);

    std::vector<Processing*> m_PerFrame;
    std::vector<Processing*> m_All;
};

}  // namespace PelmoraLib
