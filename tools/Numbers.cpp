#include "tools/Numbers.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace PelmoraTool {
namespace Numbers {

namespace {

template <class T>
std::string FormatShortest(T value) {
    char buffer[64];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::runtime_error Refused(const std::string& what, const char* fault, const std::string& text) {
    return std::runtime_error(what + " is " + fault + ": \"" + text + "\"");
}

template <class T>
T ReadWhole(const std::string& text, const std::string& what, const char* kind) {
    const std::string trimmed = Trim(text);
    const char* end = trimmed.data() + trimmed.size();
    T value{};
    const std::from_chars_result result = std::from_chars(trimmed.data(), end, value);
    if (trimmed.empty() || result.ptr != end) throw Refused(what, kind, text);
    if (result.ec == std::errc::result_out_of_range) throw Refused(what, "out of range", text);
    if (result.ec != std::errc()) throw Refused(what, kind, text);
    return value;
}

template <class T>
T ReadFinite(const std::string& text, const std::string& what) {
    const T value = ReadWhole<T>(text, what, "not a number");
    if (!std::isfinite(value)) throw Refused(what, "not finite", text);
    return value;
}

}  // namespace

std::string Format(double value) { return FormatShortest(value); }
std::string Format(float value) { return FormatShortest(value); }

double ReadDouble(const std::string& text, const std::string& what) { return ReadFinite<double>(text, what); }
float ReadFloat(const std::string& text, const std::string& what) { return ReadFinite<float>(text, what); }
long long ReadInteger(const std::string& text, const std::string& what) {
    return ReadWhole<long long>(text, what, "not an integer");
}

std::string Trim(const std::string& text) {
    const char* blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace Numbers
}  // namespace PelmoraTool
