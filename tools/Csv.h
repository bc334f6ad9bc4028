// Csv - comma-separated fields with the usual double-quote escaping, for the
// native recording format and the CSV importer.
#pragma once

#include <string>
#include <vector>

namespace PelmoraTool {
namespace Csv {

// Splits one line; quoted fields may hold commas and doubled quotes.
std::vector<std::string> Split(const std::string& line, char separator = ',');

// The field as written: quoted only when it holds a comma or a quote.
std::string Quote(const std::string& field);

}  // namespace Csv
}  // namespace PelmoraTool
