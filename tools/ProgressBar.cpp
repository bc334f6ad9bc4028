#include "tools/ProgressBar.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace PelmoraTool {

namespace {

// Shorter replays finish before a bar would tell anything.
const size_t kLongRecording = 2000;
const int kWidth = 40;

}  // namespace

ProgressBar::ProgressBar(size_t total) : ProgressBar(total, "frames", kLongRecording) {}

ProgressBar::ProgressBar(size_t total, const char* unit, size_t shownFrom)
    : m_Total(total), m_Unit(unit), m_Shown(total >= shownFrom && isatty(STDERR_FILENO)) {}

ProgressBar::~ProgressBar() {
    if (m_Shown) fprintf(stderr, "\r%*s\r", kWidth + 30, "");
}

void ProgressBar::Update(size_t done) {
    if (!m_Shown) return;
    const int percent = static_cast<int>(done * 100 / m_Total);
    if (percent == m_LastPercent) return;
    m_LastPercent = percent;
    const int filled = percent * kWidth / 100;
    fprintf(stderr, "\r[%s%s] %3d%% %zu/%zu %s", std::string(static_cast<size_t>(filled), '#').c_str(),
            std::string(static_cast<size_t>(kWidth - filled), '.').c_str(), percent, done, m_Total, m_Unit);
    fflush(stderr);
}

}  // namespace PelmoraTool
