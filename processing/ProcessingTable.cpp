#include "processing/ProcessingTable.h"

#include "engine/DebugInfo.h"

namespace PelmoraLib {

ProcessingTable::~ProcessingTable() { Clear(); }

void ProcessingTable::RunList(const std::vector<Processing*>& list) {
    if (IsDebugInfo()) {
        for (Processing* processing : list) processing->RunAndPrint();
        return;
    }
    for (Processing* processing : list) processing->Run();
}

void ProcessingTable::FrameUpdate() { RunList(m_PerFrame); }

void ProcessingTable::UpdateAll() { RunList(m_All); }

void ProcessingTable::AddProcessing(Processing* processing) {
    if (processing->IsUpdatePerFrame()) m_PerFrame.push_back(processing);
    m_All.push_back(processing);
}

void ProcessingTable::Clear() {
    for (Processing* processing : m_All) delete processing;
    m_All.clear();
    m_PerFrame.clear();
}

}  // namespace PelmoraLib
