#include "tools/LinePattern.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

namespace PelmoraTool {

namespace {

bool IsDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

size_t Number(const std::string& line, size_t begin, size_t end) {
    size_t number = 0;
    for (size_t i = begin; i < end; ++i) {
        const size_t digit = static_cast<size_t>(line[i] - '0');
        if (number > (SIZE_MAX - digit) / 10) return SIZE_MAX;
        number = number * 10 + digit;
    }
    return number;
}

// Matches `pattern` at the start of line[*pos..]; moves *pos past it.
bool MatchForward(const std::string& pattern, const std::string& line, size_t* pos, std::vector<size_t>& numbers) {
    for (char p : pattern) {
        if (p != '#') {
            if (*pos >= line.size() || line[*pos] != p) return false;
            ++*pos;
            continue;
        }
        const size_t begin = *pos;
        while (*pos < line.size() && IsDigit(line[*pos])) ++*pos;
        if (*pos == begin) return false;
        numbers.push_back(Number(line, begin, *pos));
    }
    return true;
}

// Matches `pattern` at the end of line[floor..*end]; moves *end before it.
bool MatchBackward(const std::string& pattern, const std::string& line, size_t floor, size_t* end,
                   std::vector<size_t>& numbers) {
    std::vector<size_t> found;
    for (auto p = pattern.rbegin(); p != pattern.rend(); ++p) {
        if (*p != '#') {
            if (*end <= floor || line[*end - 1] != *p) return false;
            --*end;
            continue;
        }
        const size_t last = *end;
        while (*end > floor && IsDigit(line[*end - 1])) --*end;
        if (*end == last) return false;
        found.push_back(Number(line, *end, last));
    }
    numbers.insert(numbers.end(), found.rbegin(), found.rend());
    return true;
}

}  // namespace

LinePattern::LinePattern(const std::string& pattern) : m_HasAny(pattern.find('*') != std::string::npos) {
    const size_t star = std::min(pattern.find('*'), pattern.size());
    m_Head = pattern.substr(0, star);
    if (m_HasAny) m_Tail = pattern.substr(star + 1);
}

std::optional<LineMatch> LinePattern::Match(const std::string& line) const {
    LineMatch match;
    size_t pos = 0;
    if (!MatchForward(m_Head, line, &pos, match.numbers)) return std::nullopt;
    if (!m_HasAny) return pos == line.size() ? std::optional<LineMatch>(match) : std::nullopt;
    size_t end = line.size();
    if (!MatchBackward(m_Tail, line, pos, &end, match.numbers)) return std::nullopt;
    match.any = line.substr(pos, end - pos);
    return match;
}

}  // namespace PelmoraTool
