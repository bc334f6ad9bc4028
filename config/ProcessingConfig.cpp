#include "config/ProcessingConfig.h"

#include <cstdio>

namespace PelmoraLib {

ProcessingConfig::~ProcessingConfig() { Clear(); }

void ProcessingConfig::Clear() {
    for (FunctionConfig* function : m_Functions) delete function;
    m_Functions.clear();
}

Processing* ProcessingConfig::Compiler(int playerIndex) {
    Processing* processing = new Processing(m_IsUpdate);
    for (size_t index = 0; index < m_Functions.size(); ++index) {
        BaseFunction* function = m_Functions[index]->Compiler(playerIndex);
        if (!function) {
            printf("Function Compiler Failed! Index:%d\n", static_cast<int>(index));
            delete processing;
            return nullptr;
        }
        processing->AddFunction(function);
    }
    return processing;
}

}  // namespace PelmoraLib
