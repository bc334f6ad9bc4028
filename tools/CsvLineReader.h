// CsvLineReader - the lines of a text file, one at a time, for the recording
// reader and the importers. A line ends at LF, CRLF or a lone CR; a UTF-8
// byte order mark before the first line is skipped. A UTF-16 file, a line
// holding a NUL byte and a line longer than kMaxLineBytes are refused, so no
// input (/dev/zero included) makes the reader hold more than one bounded
// line. Not thread-safe: one reader per stream.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace PelmoraTool {

class CsvLineReader {
public:
    static const size_t kMaxLineBytes = 1 << 20;

    explicit CsvLineReader(std::istream& in);

    // The next line without its ending; false at the end of the input.
    // Throws std::runtime_error "line N: ..." for a line it refuses.
    bool Next(std::string& line);

    // The number of the line last returned, from 1.
    size_t Number() const { return m_Number; }

private:
    void RefuseUtf16();
    void Refuse(const std::string& what) const;

    std::streambuf* m_Input;
    size_t m_Number = 0;
};

}  // namespace PelmoraTool
