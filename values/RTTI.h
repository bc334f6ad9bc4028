// RTTI - the library's own run-time type record: a class name and the record
// of its base class. Values and thread commands carry one static record per
// class and are tested for kind by walking the base links.
// Thread-safety: records are immutable statics; safe from any thread.
#pragma once

#include "PelmoraExport.h"

class PELMORA_API RTTI {
public:
    RTTI(const char* name, const RTTI* baseRTTI) : m_Name(name), m_BaseRTTI(baseRTTI) {}

    const char* GetName() const { return m_Name; }
    const RTTI* GetBaseRTTI() const { return m_BaseRTTI; }

private:
    const char* m_Name;
    const RTTI* m_BaseRTTI;
};
