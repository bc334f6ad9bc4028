#include "tools/LabelledSet.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "tools/ConfigDocument.h"
#include "tools/Replay.h"

namespace PelmoraTool {

namespace {

std::vector<std::string> Recordings(const std::vector<std::string>& data) {
    std::vector<std::string> paths;
    for (const std::string& item : data) {
        if (!std::filesystem::is_directory(item)) {
            paths.push_back(item);
            continue;
        }
        std::vector<std::string> inside;
        for (const auto& entry : std::filesystem::directory_iterator(item)) {
            if (entry.path().extension() == ".csv") inside.push_back(entry.path().string());
        }
        std::sort(inside.begin(), inside.end());
        paths.insert(paths.end(), inside.begin(), inside.end());
    }
    return paths;
}

void AssignRows(LabelledSet& set, const std::vector<std::string>& gestures) {
    set.rows = set.map.targets;
    for (size_t t = 0; t < set.map.targets.size(); ++t) {
        for (const std::string& name : set.map.targetGestures[t]) {
            if (!set.rowOf.emplace(name, t).second)
                throw std::runtime_error(set.options.map + ": gesture \"" + name + "\" stands for two different labels' targets");
        }
    }
    for (const std::string& name : gestures) {
        if (set.rowOf.count(name)) continue;
        set.rowOf[name] = set.rows.size();
        set.rows.push_back(name);
    }
}

}  // namespace

LabelledSet LabelledSet::Make(const EvaluateOptions& options) {
    std::vector<std::string> gestures;
    for (const GestureEntry& gesture : ConfigDocument::Load(options.config).gestures) gestures.push_back(gesture.name);
    LabelledSet set{options, LabelMap::ReadFile(options.map, gestures), {}, {}, {}};
    AssignRows(set, gestures);
    const bool fileLabels = options.form == LabelForm::File;
    if (fileLabels && options.manifest.empty()) throw std::runtime_error("whole-file labels need a --manifest");
    const Manifest manifest = options.manifest.empty() ? Manifest() : Manifest::ReadFile(options.manifest, fileLabels);
    for (const std::string& path : Recordings(options.data)) {
        if (options.manifest.empty()) {
            set.recordings.push_back({path, "-", ""});
            continue;
        }
        const ManifestEntry* entry = manifest.Find(path);
        if (!entry) throw std::runtime_error(path + ": not listed in " + options.manifest);
        set.recordings.push_back({path, entry->subject, entry->label});
    }
    if (set.recordings.empty()) throw std::runtime_error("no recordings to evaluate");
    return set;
}

std::vector<LabelledSpan> LabelledSet::Spans(const LabelledRecording& recording) const {
    RecordingReader reader(recording.path);
    std::vector<LabelledSpan> spans;
    for (const Performance& performance : Labels::Performances(reader, options.form, recording.fileLabel)) {
        const LabelMeaning* meaning = map.Find(performance.label);
        if (!meaning)
            throw std::runtime_error(recording.path + ": frame " + std::to_string(performance.frame) + ": label \"" +
                                     performance.label + "\" is not in " + options.map);
        if (meaning->kind == LabelMeaning::Negative) continue;
        spans.push_back({performance.player, performance.startMs, performance.endMs,
                         meaning->kind == LabelMeaning::DontCare, meaning->target, meaning->repeated});
    }
    return spans;
}

void LabelledSet::Replay(const LabelledRecording& recording, const std::string& config,
                         const std::vector<std::string>& gestures, const std::function<void(const GestureEvent&)>& sink) const {
    ReplayOptions replayOptions;
    replayOptions.gestures = gestures;
    PelmoraTool::Replay replay(recording.path, replayOptions, [&](const GestureEvent& event) {
        if (event.kind == EventKind::Finished) sink(event);
    });
    try {
        replay.Run(config);
    } catch (const std::runtime_error& error) {
        const std::string what = error.what();
        throw std::runtime_error(what.rfind(recording.path, 0) == 0 ? what : recording.path + ": " + what);
    }
}

}  // namespace PelmoraTool
