// ProgressBar - a one-line progress bar on standard error for long replays,
// shown only when standard error is a terminal.
#pragma once

#include <cstddef>

namespace PelmoraTool {

class ProgressBar {
public:
    explicit ProgressBar(size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Update(size_t done);

private:
    size_t m_Total;
    bool m_Shown;
    int m_LastPercent = -1;
};

}  // namespace PelmoraTool
