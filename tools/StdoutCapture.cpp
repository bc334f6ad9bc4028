#include "tools/StdoutCapture.h"

#include <stdexcept>

namespace PelmoraTool {

StdoutCapture::StdoutCapture() : m_File(tmpfile()) {
    if (!m_File) throw std::runtime_error("cannot create a temporary file to read the library's messages");
    m_Redirect.reset(new StdoutRedirect(fileno(m_File)));
}

StdoutCapture::~StdoutCapture() {
    m_Redirect.reset();
    fclose(m_File);
}

std::vector<std::string> StdoutCapture::Lines() {
    fflush(stdout);
    rewind(m_File);
    std::vector<std::string> lines(1);
    for (int c; (c = fgetc(m_File)) != EOF;) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += static_cast<char>(c);
        }
    }
    if (lines.back().empty()) lines.pop_back();
    return lines;
}

}  // namespace PelmoraTool
