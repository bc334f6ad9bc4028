// RecordingReader - reads a recording in the native format as a stream: the
// header when it opens, then one frame per call, holding one line and one
// frame whatever the size of the file. Every frame it yields has finite
// numbers and a time that keeps Recording's rules.
// Errors name the source, the line and the fault. Not thread-safe: one
// reader per thread; any number of readers may read the same file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iosfwd>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tools/CsvLineReader.h"
#include "tools/Recording.h"

namespace PelmoraTool {

// One player of a recording as a whole pass over it finds it.
struct RecordedPlayer {
    long long number = 0;
    double firstMs = 0.0;
    double lastMs = 0.0;
};

// What a replay must know before its first frame.
struct RecordingSummary {
    size_t frames = 0;
    double firstMs = 0.0;
    std::vector<RecordedPlayer> players;  // ascending numbers: the library's players 0..N-1
};

class RecordingReader {
public:
    // Each player costs the library its own state, so a replay refuses
    // recordings with more distinct player numbers than this.
    static const size_t kMaxPlayers = 256;

    // Opens the file and reads its header; errors begin with the path.
    explicit RecordingReader(const std::string& path);
    // Reads a stream the caller keeps alive; errors begin with `source`
    // and ": " unless it is empty.
    RecordingReader(std::istream& in, const std::string& source);

    const std::vector<int32_t>& Joints() const { return m_Joints; }
    bool HasLabels() const { return m_HasLabels; }

    // The next frame into `frame`, reusing its storage; false at the end.
    // Throws std::runtime_error naming the line at fault.
    bool Next(RecordedFrame& frame);

    // The frames still to come, players and all; throws when there are more
    // than kMaxPlayers players.
    RecordingSummary Summarise();

private:
    void ReadHeader();
    void ReadRow(RecordedFrame& frame);
    std::runtime_error Error(const std::string& what) const;

    std::unique_ptr<std::ifstream> m_File;
    std::string m_Source;
    CsvLineReader m_Lines;
    std::string m_Line;
    std::vector<std::string> m_Fields;
    std::vector<int32_t> m_Joints;
    std::vector<std::string> m_Columns;  // "Head.x" .. by joint and axis, for messages
    bool m_HasLabels = false;
    double m_LastMs = -std::numeric_limits<double>::infinity();
};

}  // namespace PelmoraTool
