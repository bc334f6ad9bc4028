// Numbers - locale-independent number texts for the recording files, the
// event lines and the report: shortest forms that read back exactly.
#pragma once

#include <string>

namespace PelmoraTool {
namespace Numbers {

std::string Format(double value);
std::string Format(float value);

// The whole text (blanks around it allowed) must be the number.
bool Parse(const std::string& text, double& value);
bool Parse(const std::string& text, float& value);
bool Parse(const std::string& text, long long& value);

// The text without blanks, tabs and carriage returns at either end.
std::string Trim(const std::string& text);

}  // namespace Numbers
}  // namespace PelmoraTool
