#include "config/ProcessingConfigTable.h"

#include <tinyxml.h>

#include <cstdio>
#include <cstdlib>

namespace PelmoraLib {

ProcessingConfigTable::~ProcessingConfigTable() { Clear(); }

void ProcessingConfigTable::Clear() {
    for (ProcessingConfig* processing : m_Processings) delete processing;
    m_Processings.clear();
}

namespace {

FunctionConfig* ReadFunction(const TiXmlElement* element) {
    const char* keyword = element->Attribute("name");
    if (!keyword) return nullptr;
    FunctionConfig* function = new FunctionConfig();
    function->m_Keyword = keyword;
    if (const char* result = element->Attribute("return")) function->m_Return = result;
    // Operands are numbered from 1 without gaps: the first missing number ends them.
    for (int number = 1;; ++number) {
        char name[260] = {0};
        snprintf(name, sizeof name, "value%d", number);
        const char* operand = element->Attribute(name);
        if (!operand) break;
        function->m_Values.push_back(operand);
    }
    return function;
}

}  // namespace

bool ProcessingConfigTable::Read(TiXmlElement* element) {
    ProcessingConfig* processing = new ProcessingConfig();
    if (const char* update = element->Attribute("update")) processing->m_IsUpdate = atoi(update) != 0;
    for (TiXmlElement* child = element->FirstChildElement("Function"); child;
         child = child->NextSiblingElement("Function")) {
        FunctionConfig* function = ReadFunction(child);
        if (!function) {
            delete processing;
            return false;
        }
        processing->m_Functions.push_back(function);
    }
    m_Processings.push_back(processing);
    return true;
}

bool ProcessingConfigTable::Compiler(int playerIndex, ProcessingTable& table) {
    bool result = true;
    int index = 0;
    for (ProcessingConfig* config : m_Processings) {
        printf("Begin To Compiler Processing Index:%d\n", index);
        Processing* processing = config->Compiler(playerIndex);
        if (!processing) {
            printf("Processing Index:%d Compiler Failed!\n", index);
            result = false;
        } else {
            printf("Compiler Processing Index:%d Succeed\n", index);
            table.AddProcessing(processing);
        }
        ++index;
    }
    return result;
}

}  // namespace PelmoraLib
