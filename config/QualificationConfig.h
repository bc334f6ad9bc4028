// QualificationConfig - a "Qualification" element as read from the document,
// with its operand texts unresolved until it is compiled for a player.
// Thread-safety: none; read and compiled on the host's thread.
#pragma once

#include <string>

#include "gesture/Qualification.h"

class TiXmlElement;

namespace PelmoraLib {

class PELMORA_API QualificationConfig {
public:
    // Null when the element has no "QualificationEnum". An unknown keyword is
    // kept (as Error) and refused only when compiled.
    static QualificationConfig* Read(TiXmlElement* element);
    // A new qualification bound to the player's values, or null after the
    // messages that say why.
    Qualification* Compiler(int playerIndex);

    bool m_IsResetOnFailed = false;
    bool m_IsFinishOnSucceed = false;
    Qualification::QualificationEnum m_QualificationEnum = Qualification::Error;
    std::string m_Values[2];
};

}  // namespace PelmoraLib
