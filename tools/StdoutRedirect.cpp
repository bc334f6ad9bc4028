#include "tools/StdoutRedirect.h"

#include <unistd.h>

#include <cstdio>

namespace PelmoraTool {

StdoutRedirect::StdoutRedirect(int target) {
    fflush(stdout);
    m_Original = dup(STDOUT_FILENO);
    dup2(target, STDOUT_FILENO);
}

StdoutRedirect::~StdoutRedirect() {
    fflush(stdout);
    dup2(m_Original, STDOUT_FILENO);
    close(m_Original);
}

}  // namespace PelmoraTool
