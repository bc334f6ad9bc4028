#include "tools/Labels.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

std::runtime_error LineError(const std::string& path, size_t line, const std::string& what) {
    return std::runtime_error(path + ": line " + std::to_string(line) + ": " + what);
}

std::ifstream Open(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot open " + path);
    return in;
}

std::vector<std::string> Words(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

std::vector<std::string> Alternatives(const std::string& target) {
    std::vector<std::string> names;
    std::istringstream in(target);
    for (std::string name; std::getline(in, name, '|');) names.push_back(name);
    return names;
}

std::string BaseName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

LabelMap LabelMap::ReadFile(const std::string& path, const std::vector<std::string>& gestures) {
    std::ifstream in = Open(path);
    LabelMap map;
    size_t number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        const std::vector<std::string> words = Words(line.substr(0, line.find('#')));
        if (words.empty()) continue;
        const bool repeated = words.size() == 3 && words[2] == "repeated";
        if (words.size() != 2 && !repeated)
            throw LineError(path, number, "expected LABEL TARGET [repeated] (a gesture, A|B, none or -)");
        LabelMeaning meaning;
        if (words[1] == "-") {
            meaning.kind = LabelMeaning::DontCare;
        } else if (words[1] != "none") {
            for (const std::string& name : Alternatives(words[1])) {
                if (std::find(gestures.begin(), gestures.end(), name) == gestures.end())
                    throw LineError(path, number, "unknown gesture \"" + name + "\"");
            }
            const auto known = std::find(map.targets.begin(), map.targets.end(), words[1]);
            meaning.kind = LabelMeaning::Gesture;
            meaning.repeated = repeated;
            meaning.target = static_cast<size_t>(known - map.targets.begin());
            if (known == map.targets.end()) {
                map.targets.push_back(words[1]);
                map.targetGestures.push_back(Alternatives(words[1]));
            }
        }
        if (repeated && meaning.kind != LabelMeaning::Gesture)
            throw LineError(path, number, "only a gesture's label can be repeated");
        if (!map.m_Meanings.emplace(words[0], meaning).second)
            throw LineError(path, number, "label \"" + words[0] + "\" is mapped twice");
    }
    return map;
}

const LabelMeaning* LabelMap::Find(const std::string& label) const {
    const auto found = m_Meanings.find(label);
    return found == m_Meanings.end() ? nullptr : &found->second;
}

Manifest Manifest::ReadFile(const std::string& path, bool needsLabels) {
    std::ifstream in = Open(path);
    std::string line;
    if (!std::getline(in, line)) throw LineError(path, 1, "no header: the file is empty");
    const std::vector<std::string> header = Csv::Split(Numbers::Trim(line), '\t');
    const auto column = [&](const std::string& name) {
        return static_cast<size_t>(std::find(header.begin(), header.end(), name) - header.begin());
    };
    const size_t file = column("file"), subject = column("subject"), label = column("label");
    if (file == header.size() || subject == header.size() || (needsLabels && label == header.size()))
        throw LineError(path, 1, needsLabels ? "the header must name file, subject and label" : "the header must name file and subject");
    Manifest manifest;
    for (size_t number = 2; std::getline(in, line); ++number) {
        if (Numbers::Trim(line).empty()) continue;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::vector<std::string> fields = Csv::Split(line, '\t');
        for (std::string& field : fields) field = Numbers::Trim(field);
        if (fields.size() != header.size())
            throw LineError(path, number, "expected " + std::to_string(header.size()) + " fields, found " + std::to_string(fields.size()));
        ManifestEntry entry{fields[subject], label < fields.size() ? fields[label] : ""};
        if (!manifest.m_Entries.emplace(fields[file], entry).second)
            throw LineError(path, number, "file \"" + fields[file] + "\" is listed twice");
    }
    return manifest;
}

const ManifestEntry* Manifest::Find(const std::string& fileName) const {
    const auto found = m_Entries.find(BaseName(fileName));
    return found == m_Entries.end() ? nullptr : &found->second;
}

namespace Labels {

std::vector<Performance> Performances(RecordingReader& reader, LabelForm form, const std::string& fileLabel) {
    std::vector<Performance> performances;
    std::map<long long, size_t> latest;  // player to the index of its latest performance
    RecordedFrame frame;
    for (size_t f = 0; reader.Next(frame); ++f) {
        if (form == LabelForm::File) {
            if (performances.empty()) performances.push_back({fileLabel, frame.player, 0, frame.timeMs, frame.timeMs});
            performances.front().endMs = frame.timeMs;
            continue;
        }
        if (frame.label.empty()) continue;
        const auto run = latest.find(frame.player);
        if (form == LabelForm::Runs && run != latest.end()) {
            Performance& last = performances[run->second];
            if (last.label == frame.label && frame.timeMs - last.endMs <= kRunGapMs) {
                last.endMs = frame.timeMs;
                continue;
            }
        }
        latest[frame.player] = performances.size();
        performances.push_back({frame.label, frame.player, f, frame.timeMs, frame.timeMs});
    }
    return performances;
}

}  // namespace Labels
}  // namespace PelmoraTool
