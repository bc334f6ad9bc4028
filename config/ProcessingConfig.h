// ProcessingConfig - a "Processing" element as read from the document: its
// functions in order and whether the block runs on every frame.
// Thread-safety: none; read and compiled on the host's thread.
#pragma once

#include <vector>

#include "config/FunctionConfig.h"
#include "processing/Processing.h"

namespace PelmoraLib {

class PELMORA_API ProcessingConfig {
public:
    ProcessingConfig() = default;
    ~ProcessingConfig();
    ProcessingConfig(const ProcessingConfig&) = delete;
    ProcessingConfig& operator=(const ProcessingConfig&) = delete;

    // A new block with every function compiled, or null when one fails.
    Processing* Compiler(int playerIndex);
    void Clear();

    std::vector<FunctionConfig*> m_Functions;
    bool m_IsUpdate = false;
};

}  // namespace PelmoraLib
