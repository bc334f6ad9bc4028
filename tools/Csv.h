// Csv - comma-separated fields with the usual double-quote escaping, for the
// native recording format and the CSV importer. A quoted field ends on the
// line it starts on. Stateless: safe from any thread.
#pragma once

#include <string>
#include <vector>

namespace PelmoraTool {
namespace Csv {

// Splits one line into `fields`, reusing their storage; quoted fields may
// hold commas and doubled quotes. Throws std::runtime_error when a quote is
// not closed by the end of the line.
void Split(const std::string& line, std::vector<std::string>& fields, char separator = ',');
std::vector<std::string> Split(const std::string& line, char separator = ',');

// The field as written: quoted only when it holds a comma or a quote.
std::string Quote(const std::string& field);

}  // namespace Csv
}  // namespace PelmoraTool
