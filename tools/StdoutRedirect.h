// StdoutRedirect - points file descriptor 1, where the library prints its
// diagnostics, at another descriptor for the object's lifetime. The tool's
// own output keeps the original standard output through OriginalFd(), so its
// event lines never mix with the library's chatter.
#pragma once

namespace PelmoraTool {

class StdoutRedirect {
public:
    explicit StdoutRedirect(int target);
    ~StdoutRedirect();
    StdoutRedirect(const StdoutRedirect&) = delete;
    StdoutRedirect& operator=(const StdoutRedirect&) = delete;

    // A duplicate of what descriptor 1 was before; valid until destruction.
    int OriginalFd() const { return m_Original; }

private:
    int m_Original;
};

}  // namespace PelmoraTool
