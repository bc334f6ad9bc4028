// LabelledSet - the labelled recordings one command scores: the label map
// and the rows it scores (map targets, then the configuration's other
// gestures), each recording with its subject, and the replay of one
// recording into finished events, with its errors named after the file.
// `pelmora evaluate` and `pelmora tune` read their data through it.
// Read-only after Make: safe to share with forked workers.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tools/GestureEvent.h"
#include "tools/Labels.h"
#include "tools/Matching.h"

namespace PelmoraTool {

struct EvaluateOptions {
    std::string config;
    std::vector<std::string> data;  // recordings, or folders of *.csv recordings
    std::string map;                // label map (tools/Labels.h)
    std::string manifest;           // optional; needed for whole-file labels
    LabelForm form = LabelForm::Runs;
    MatchWindow window;
    unsigned jobs = 0;              // 0: one per core
    bool json = false;
};

struct LabelledRecording {
    std::string path;
    std::string subject;    // "-" without a manifest
    std::string fileLabel;  // for whole-file labels
};

class LabelledSet {
public:
    // Throws std::runtime_error naming the file (and line) at fault.
    static LabelledSet Make(const EvaluateOptions& options);

    // The recording's performances of mapped labels (negatives left out).
    std::vector<LabelledSpan> Spans(const LabelledRecording& recording) const;

    // Replays the recording through `config` with `gestures` enabled (empty:
    // all) and hands each finished event to `sink`. Errors name the recording.
    void Replay(const LabelledRecording& recording, const std::string& config, const std::vector<std::string>& gestures,
                const std::function<void(const GestureEvent&)>& sink) const;

    const EvaluateOptions& options;
    LabelMap map;
    std::vector<std::string> rows;        // map targets, then the other gestures
    std::map<std::string, size_t> rowOf;  // gesture name to row
    std::vector<LabelledRecording> recordings;
};

}  // namespace PelmoraTool
