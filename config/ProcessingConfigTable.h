// ProcessingConfigTable - the processing blocks of every loaded document, in
// load order, compiled on request into one player's processing table.
// Thread-safety: none; used on the host's thread while no pass runs.
#pragma once

#include <list>

#include "config/ProcessingConfig.h"
#include "processing/ProcessingTable.h"

class TiXmlElement;

namespace PelmoraLib {

class PELMORA_API ProcessingConfigTable {
public:
    ProcessingConfigTable() = default;
    ~ProcessingConfigTable();
    ProcessingConfigTable(const ProcessingConfigTable&) = delete;
    ProcessingConfigTable& operator=(const ProcessingConfigTable&) = delete;

    // Appends one "Processing" element; false (silently) when a "Function"
    // lacks its "name" and the whole block was dropped.
    bool Read(TiXmlElement* element);
    // Adds every block that compiles; false when any failed.
    bool Compiler(int playerIndex, ProcessingTable& table);
    void Clear();
    size_t GetProcessingConfigNum() const { return m_Processings.size(); }

private:
    std::list<ProcessingConfig*> m_Processings;
};

}  // namespace PelmoraLib
