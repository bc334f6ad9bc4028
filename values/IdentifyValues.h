// IdentifyValues - one player's value pool together with the rules by which a
// configuration names values ("@Name", "@Name.x", literals) and by which
// values are printed in traces.
// Thread-safety: none; see ValuesTable. The type-keyword map is built once per
// process, safely from any thread.
#pragma once

#include <string>

#include "values/ValuesTable.h"

class TiXmlElement;

namespace PelmoraLib {

class PELMORA_API IdentifyValues : public ValuesTable {
public:
    IdentifyValues();

    // Declares the "Value" children of an "IdentfyValues" element; false at
    // the first unknown type or refused name (earlier values stay).
    bool Read(TiXmlElement* section);

    // "@Name" or "@Name.c" names a value (c in x, y, z, w, any case, picks a
    // component into `sub`); other texts are literal constants unless
    // `noConstant` forbids them.
    BaseValue* GetValueFromString(const char* text, BaseValue::SubType& sub, bool noConstant);

    // Appends the printed form of a value (or of its selected component).
    static void ValueToString(BaseValue* value, BaseValue::SubType& sub, std::string& out);

    // Type keyword ("int", "float", "vector3", "quaternion", lower case) to
    // type; false when unknown.
    static bool LookUpType(const std::string& keyword, BaseValue::Type& type);

private:
    static void InitCommon();
};

}  // namespace PelmoraLib
