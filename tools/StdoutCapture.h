// StdoutCapture - collects what the library prints on standard output while
// it lives, so that its compile messages can be read back line by line. A
// temporary file rather than a pipe: nobody has to drain it while the
// library writes.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tools/StdoutRedirect.h"

namespace PelmoraTool {

class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Everything printed since construction, split into lines.
    std::vector<std::string> Lines();

private:
    FILE* m_File;
    std::unique_ptr<StdoutRedirect> m_Redirect;
};

}  // namespace PelmoraTool
