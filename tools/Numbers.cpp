#include "tools/Numbers.h"

#include <charconv>

namespace PelmoraTool {
namespace Numbers {

namespace {

template <class T>
std::string FormatShortest(T value) {
    char buffer[64];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

template <class T>
bool ParseWhole(const std::string& text, T& value) {
    const std::string trimmed = Trim(text);
    if (trimmed.empty()) return false;
    const char* end = trimmed.data() + trimmed.size();
    const std::from_chars_result result = std::from_chars(trimmed.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

std::string Format(double value) { return FormatShortest(value); }
std::string Format(float value) { return FormatShortest(value); }

bool Parse(const std::string& text, double& value) { return ParseWhole(text, value); }
bool Parse(const std::string& text, float& value) { return ParseWhole(text, value); }
bool Parse(const std::string& text, long long& value) { return ParseWhole(text, value); }

std::string Trim(const std::string& text) {
    const char* blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace Numbers
}  // namespace PelmoraTool
