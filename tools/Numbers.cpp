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

const char* const kBlanks = " \t\r";

// Reads in place: a recording has millions of fields.
template <class T>
T ReadWhole(const std::string& text, const std::string& what, const char* kind) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) throw Refused(what, kind, text);
    const char* end = text.data() + text.find_last_not_of(kBlanks) + 1;
    T value{};
    const std::from_chars_result result = std::from_chars(text.data() + first, end, value);
    if (result.ptr != end) throw Refused(what, kind, text);
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

bool IsBlank(const std::string& text) { return text.find_first_not_of(kBlanks) == std::string::npos; }

std::string Trim(const std::string& text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace Numbers
}  // namespace PelmoraTool
