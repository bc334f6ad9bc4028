#include "tools/CsvLineReader.h"

#include <istream>
#include <stdexcept>

namespace PelmoraTool {

namespace {

const int kEnd = std::char_traits<char>::eof();
const char* const kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

CsvLineReader::CsvLineReader(std::istream& in) : m_Input(in.rdbuf()) {}

void CsvLineReader::RefuseUtf16() {
    const int first = m_Input->sgetc();
    if (first != 0xFF && first != 0xFE) return;
    m_Number = 1;
    Refuse("the file is UTF-16 text; save it as UTF-8");
}

bool CsvLineReader::Next(std::string& line) {
    line.clear();
    if (m_Number == 0) RefuseUtf16();
    int c = m_Input->sbumpc();
    if (c == kEnd) return false;
    ++m_Number;
    for (; c != kEnd && c != '\n' && c != '\r'; c = m_Input->sbumpc()) {
        if (c == '\0') Refuse("holds a NUL byte: not a text file");
        if (line.size() == kMaxLineBytes) Refuse("longer than " + std::to_string(kMaxLineBytes) + " bytes");
        line += static_cast<char>(c);
    }
    if (c == '\r' && m_Input->sgetc() == '\n') m_Input->sbumpc();
    if (m_Number == 1 && line.compare(0, 3, kByteOrderMark) == 0) line.erase(0, 3);
    return true;
}

void CsvLineReader::Refuse(const std::string& what) const {
    throw std::runtime_error("line " + std::to_string(m_Number) + ": " + what);
}

}  // namespace PelmoraTool
