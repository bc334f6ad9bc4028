// FunctionConfig - a "Function" element as read from the document: keyword,
// return-value text and operand texts, resolved when compiled for a player.
// Thread-safety: none; read and compiled on the host's thread.
#pragma once

#include <string>
#include <vector>

#include "processing/BaseFunction.h"

namespace PelmoraLib {

class PELMORA_API FunctionConfig {
public:
    // A new function bound to the player's values, or null after the
    // messages that say why. The keyword is kept upper-cased afterwards.
    BaseFunction* Compiler(int playerIndex);

    std::string m_Keyword;
    std::string m_Return;
    std::vector<std::string> m_Values;
};

}  // namespace PelmoraLib
