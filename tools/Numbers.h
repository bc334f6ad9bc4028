// Numbers - locale-independent number texts for the recording files, the
// event lines and the report: shortest forms that read back exactly.
// Stateless: safe from any thread.
#pragma once

#include <string>

namespace PelmoraTool {
namespace Numbers {

std::string Format(double value);
std::string Format(float value);

// The whole text (blanks around it allowed) must be the number, and a real
// one finite. Each throws std::runtime_error naming `what` and the text:
// "<what> is not a number", "is not an integer", "is out of range" or
// "is not finite".
double ReadDouble(const std::string& text, const std::string& what);
float ReadFloat(const std::string& text, const std::string& what);
long long ReadInteger(const std::string& text, const std::string& what);

// The text without blanks, tabs and carriage returns at either end.
std::string Trim(const std::string& text);
// Whether the text is nothing but those.
bool IsBlank(const std::string& text);

}  // namespace Numbers
}  // namespace PelmoraTool
