#include "processing/Processing.h"

namespace PelmoraLib {

Processing::~Processing() { Clear(); }

void Processing::Run() {
    for (BaseFunction* function : m_Functions) function->Run();
}

void Processing::RunAndPrint() {
    for (BaseFunction* function : m_Functions) function->RunAndPrint();
}

void Processing::Clear() {
    for (BaseFunction* function : m_Functions) delete function;
    m_Functions.clear();
}

}  // namespace PelmoraLib
