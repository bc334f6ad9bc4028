// RecordingWriter - writes a recording in the native format as a stream, one
// frame at a time, keeping the rules RecordingReader checks so that what it
// writes reads back: distinct joints, times in range and in order. Not
// thread-safe: one writer per stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <vector>

#include "tools/Recording.h"

namespace PelmoraTool {

class RecordingWriter {
public:
    explicit RecordingWriter(std::ostream& out) : m_Out(out) {}

    // Writes the header. Throws std::runtime_error when a joint appears twice.
    void Begin(const std::vector<int32_t>& joints, bool hasLabels);
    // Throws std::runtime_error, writing nothing, when the time breaks a rule.
    void Write(const RecordedFrame& frame);

    const std::vector<int32_t>& Joints() const { return m_Joints; }
    size_t Frames() const { return m_Frames; }

private:
    std::ostream& m_Out;
    std::vector<int32_t> m_Joints;
    bool m_HasLabels = false;
    size_t m_Frames = 0;
    double m_LastMs = -std::numeric_limits<double>::infinity();
};

}  // namespace PelmoraTool
