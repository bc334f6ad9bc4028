// Labels - what labelled recordings contain and what their labels mean:
//   runs    a label repeated over consecutive frames, one performance per run
//   points  a label on a single frame, the instant a gesture should be seen
//   file    one performance per recording, its label given by a manifest
// A label map says which gesture(s) each dataset label stands for ("A|B":
// either gesture counts), "none" for a negative (any event there is false)
// and "-" for don't care (events there count neither way); a gesture's label
// marked "repeated" may hold several performances, found by its first event.
// A manifest names each recording's subject and, for whole-file labels, its
// label.
// Plain data read once; safe to share between threads read-only.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tools/RecordingReader.h"

namespace PelmoraTool {

enum class LabelForm { Runs, Points, File };

// One labelled performance of one player; for points startMs == endMs.
struct Performance {
    std::string label;
    long long player = 0;
    size_t frame = 0;  // the first frame carrying it, from 0
    double startMs = 0.0;
    double endMs = 0.0;
};

struct LabelMeaning {
    enum Kind { Gesture, Negative, DontCare } kind = Negative;
    size_t target = 0;  // index into LabelMap::targets for Gesture
    bool repeated = false;
};

class LabelMap {
public:
    // Throws std::runtime_error "<path>: line N: ..." for a malformed line,
    // a label given twice or a gesture the configuration does not have.
    static LabelMap ReadFile(const std::string& path, const std::vector<std::string>& gestures);

    // Nullptr when the map does not mention the label.
    const LabelMeaning* Find(const std::string& label) const;

    // Each distinct right-hand side, "A" or "A|B", with its gestures.
    std::vector<std::string> targets;
    std::vector<std::vector<std::string>> targetGestures;

private:
    std::map<std::string, LabelMeaning> m_Meanings;
};

struct ManifestEntry {
    std::string subject;
    std::string label;  // empty when the manifest has no label column
};

class Manifest {
public:
    // A tab-separated file whose header names at least the columns "file"
    // and "subject" (and "label" for whole-file labels), in any order;
    // extra columns are ignored. Throws "<path>: line N: ..." on a short
    // row, a missing column or a file listed twice.
    static Manifest ReadFile(const std::string& path, bool needsLabels);

    // Keyed by the recording's file name without its folder; nullptr when absent.
    const ManifestEntry* Find(const std::string& fileName) const;

private:
    std::map<std::string, ManifestEntry> m_Entries;
};

namespace Labels {

// Separated by at most this much unlabelled time, two runs of one label and
// player are one performance: hand-set labels drop a frame or two mid-move.
constexpr double kRunGapMs = 300.0;

// The performances of the frames still to come, in time order. For the file
// form the one performance spans the recording and carries `fileLabel`.
// Throws the reader's errors.
std::vector<Performance> Performances(RecordingReader& reader, LabelForm form, const std::string& fileLabel);

}  // namespace Labels
}  // namespace PelmoraTool
