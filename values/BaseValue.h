// BaseValue - a named, typed quantity of a player's value pool: the root of
// the int, float, float-reference and 3-vector values.
// Thread-safety: none; a value is used by the thread that updates its player.
#pragma once

#include <string>

#include "PelmoraExport.h"
#include "values/RTTI.h"

namespace PelmoraLib {

// Untyped view of a value's storage.
union CommonPtr {
    void* p;
    int* i;
    float* f;
    float* v3;  // x, y, z in a row
};

class PELMORA_API BaseValue {
public:
    enum Type { Int = 0, Float = 1, Vector3 = 2, Quaternion = 3, None = 5 };
    enum SubType { SubWhole = 0, SubX = 1, SubY = 2, SubZ = 3, SubW = 4 };

    static const RTTI ms_RTTI;

    BaseValue();
    explicit BaseValue(const char* name);
    // A copy carries the flag but no name; assignment copies the name too.
    BaseValue(const BaseValue& other);
    BaseValue& operator=(const BaseValue& other);

    virtual const RTTI* GetRTTI() const { return &ms_RTTI; }
    virtual ~BaseValue();
    virtual Type GetType() const { return None; }
    virtual CommonPtr GetValue();
    virtual BaseValue* GetSubValue(SubType sub);

    bool IsExactKindOf(const RTTI* rtti) const;
    static bool IsExactKindOf(const RTTI* rtti, const BaseValue* value);
    bool IsKindOf(const RTTI* rtti) const;
    static bool IsKindOf(const RTTI* rtti, const BaseValue* value);
    BaseValue* DynamicCast(const RTTI* rtti) const;
    static BaseValue* DynamicCast(const RTTI* rtti, const BaseValue* value);
    static BaseValue* VerifyStaticCastDebug(const RTTI* rtti, const BaseValue* value);

    const char* Name() const { return m_Name.c_str(); }
    void SetName(const char* name);

protected:
    std::string m_Name;
    bool m_Flag;  // kept with the record; nothing reads it
};

}  // namespace PelmoraLib
