#include "tools/CompileLog.h"

#include "tools/LinePattern.h"

namespace PelmoraTool {

namespace {

const LinePattern kProcessingBegin("Begin To Compiler Processing Index:#");
const LinePattern kProcessingSucceeded("Compiler Processing Index:# Succeed");
const LinePattern kProcessingFailed("Processing Index:# Compiler Failed!");
const LinePattern kFunctionFailed("Function Compiler Failed! Index:#");
const LinePattern kGestureBegin("Gesture:* Begin to Compiler");
const LinePattern kGestureSucceeded("Gesture:* Compiler Succeed!");
const LinePattern kGestureFailed("Gesture Compiler failed! Index == #");
const LinePattern kSegmentFailed("PlayerIndex:# Gesture:* Segment # Compiler Failed!");
const LinePattern kQualificationFailed("PlayerIndex: # Qualification Index # Compiler Failed!");
const LinePattern kValueTypeRefused("* type is undefine value type!!");

template <class T>
const T* At(const std::vector<T>& items, size_t index) {
    return index < items.size() ? &items[index] : nullptr;
}

std::optional<XmlPlace> PlaceOf(const XmlPlace* place) { return place ? std::optional<XmlPlace>(*place) : std::nullopt; }

}  // namespace

std::vector<Problem> CompileLog::Locate(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) Read(line);
    return m_Problems;
}

bool CompileLog::IsProgress(const std::string& line) {
    return kProcessingBegin.Match(line) || kGestureBegin.Match(line) || kProcessingSucceeded.Match(line) ||
           kGestureSucceeded.Match(line) || line == "All GestureConfig Compiler Succeed!!";
}

void CompileLog::Read(const std::string& line) {
    if (const auto m = kProcessingBegin.Match(line)) {
        m_Processing = m->numbers[0];
        return;
    }
    if (kGestureBegin.Match(line)) {
        m_Gesture = m_GesturesBegun++;
        return;
    }
    if (IsProgress(line)) return;
    if (const auto m = kFunctionFailed.Match(line)) {
        Add(line);
        PlacePending(FunctionPlace(m->numbers[0]));
        return;
    }
    if (kProcessingFailed.Match(line)) {
        const ProcessingEntry* processing = At(m_Document.processings, m_Processing);
        m_Problems.push_back({PlaceOf(processing ? &processing->place : nullptr), line});
        return;
    }
    if (const auto m = kQualificationFailed.Match(line)) {
        Add(line);
        m_Qualification = m->numbers[1];
        return;
    }
    if (const auto m = kSegmentFailed.Match(line)) {
        PlaceSegmentFailure(line, m->numbers[1]);
        return;
    }
    if (const auto m = kGestureFailed.Match(line)) {
        const GestureEntry* gesture = At(m_Document.gestures, m->numbers[0]);
        m_Problems.push_back({PlaceOf(gesture ? &gesture->place : nullptr), line});
        return;
    }
    if (kValueTypeRefused.Match(line)) {
        m_Problems.push_back({PlaceOf(At(m_Document.refusedValueTypes, m_RefusedTypes++)), line});
        return;
    }
    if (line == "Quaternion is not supported in this version.") {
        m_Problems.push_back({PlaceOf(At(m_Document.quaternions, m_Quaternions++)), line});
        return;
    }
    Add(line);
}

void CompileLog::Add(const std::string& line) {
    m_Pending.push_back(m_Problems.size());
    m_Problems.push_back({std::nullopt, line});
}

void CompileLog::PlacePending(std::optional<XmlPlace> place) {
    for (size_t index : m_Pending) m_Problems[index].place = place;
    m_Pending.clear();
}

std::optional<XmlPlace> CompileLog::FunctionPlace(size_t function) const {
    const ProcessingEntry* processing = At(m_Document.processings, m_Processing);
    return PlaceOf(processing ? At(processing->functions, function) : nullptr);
}

void CompileLog::PlaceSegmentFailure(const std::string& line, size_t segmentIndex) {
    const GestureEntry* gesture = At(m_Document.gestures, m_Gesture);
    const SegmentEntry* segment = gesture ? At(gesture->segments, segmentIndex) : nullptr;
    const QualificationEntry* qualification = segment ? At(segment->qualifications, m_Qualification) : nullptr;
    PlacePending(PlaceOf(qualification ? &qualification->place : nullptr));
    m_Problems.push_back({PlaceOf(segment ? &segment->place : nullptr), line});
}

}  // namespace PelmoraTool
