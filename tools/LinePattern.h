// LinePattern - matches a whole line against literal text in which "#"
// stands for a run of digits and at most one "*" for any text. It takes the
// place of regular expressions for the library's messages: their
// backtracking recursed once per character, so a line of some ten thousand
// characters overflowed the stack. Matching is linear in the line. Immutable
// once built; safe to share between threads.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace PelmoraTool {

struct LineMatch {
    std::vector<size_t> numbers;  // each "#" in pattern order; SIZE_MAX when too large
    std::string any;              // what "*" stood for
};

class LinePattern {
public:
    explicit LinePattern(const std::string& pattern);

    std::optional<LineMatch> Match(const std::string& line) const;

private:
    std::string m_Head;  // before "*", or the whole pattern
    std::string m_Tail;  // after "*"
    bool m_HasAny;
};

}  // namespace PelmoraTool
