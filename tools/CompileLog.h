// CompileLog - reads the messages the library prints while it compiles a
// configuration, in order, and places each problem at the element of the
// document it is about. Detail lines ("X is a undefine value!", "Qualification
// param 0 value not found") come before the line that says which function or
// qualification failed, so they wait until that line places them. One object
// per log, used from one thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/ConfigDocument.h"

namespace PelmoraTool {

struct Problem {
    std::optional<XmlPlace> place;
    std::string text;
};

class CompileLog {
public:
    explicit CompileLog(const ConfigDocument& document) : m_Document(document) {}

    std::vector<Problem> Locate(const std::vector<std::string>& lines);

    // Lines that tell how far the compiler got, not what went wrong.
    static bool IsProgress(const std::string& line);

private:
    void Read(const std::string& line);
    void Add(const std::string& line);
    void PlacePending(std::optional<XmlPlace> place);
    std::optional<XmlPlace> FunctionPlace(size_t function) const;
    void PlaceSegmentFailure(const std::string& line, size_t segmentIndex);

    const ConfigDocument& m_Document;
    std::vector<Problem> m_Problems;
    std::vector<size_t> m_Pending;
    size_t m_Processing = 0;
    size_t m_Gesture = 0;
    size_t m_GesturesBegun = 0;
    size_t m_Qualification = 0;
    size_t m_RefusedTypes = 0;
    size_t m_Quaternions = 0;
};

}  // namespace PelmoraTool
