// ConfigCheck - `pelmora check`: loads and compiles a configuration for one
// player, prints every problem the library reports (its own lines) at the
// XML row and column of the element it is about, adds what the library drops
// without a word, and returns the exit status: 0 only for a configuration
// that compiles whole.
#pragma once

#include <iosfwd>
#include <string>

namespace PelmoraTool {

class ConfigCheck {
public:
    static int Run(const std::string& path, std::ostream& out);
};

}  // namespace PelmoraTool
