// ProgressBar - a one-line progress bar on standard error for long runs
// (replayed frames, evaluated recordings), shown only when standard error is
// a terminal. Not thread-safe: one owner updates it.
#pragma once

#include <cstddef>

namespace PelmoraTool {

class ProgressBar {
public:
    explicit ProgressBar(size_t total);
    // Counts `unit`s, shown only from `shownFrom` of them on.
    ProgressBar(size_t total, const char* unit, size_t shownFrom);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Update(size_t done);

private:
    size_t m_Total;
    const char* m_Unit;
    bool m_Shown;
    int m_LastPercent = -1;
};

}  // namespace PelmoraTool
