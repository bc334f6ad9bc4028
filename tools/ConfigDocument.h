// ConfigDocument - the configuration file as the library reads it, with the
// XML row and column of every element: which gestures and processings the
// library keeps (in its own index order), which value declarations it turns
// down, and what it drops or gets wrong without a message. `pelmora check` places the
// library's compile messages with it; the report quotes qualifications.
#pragma once

#include <optional>
#include <string>
#include <vector>

class TiXmlElement;

namespace PelmoraTool {

struct XmlPlace {
    int row = 0;
    int column = 0;
};

struct QualificationEntry {
    XmlPlace place;
    std::string kind, value1, value2;
    bool resetOnFailed = false;
    bool finishOnSucceed = false;

    // "Greate(@HandHeight, 0.2)", with the flags that are set.
    std::string Describe() const;
};

struct SegmentEntry {
    XmlPlace place;
    std::vector<QualificationEntry> qualifications;
};

struct GestureEntry {
    XmlPlace place;
    std::string name;
    std::vector<SegmentEntry> segments;
};

struct ProcessingEntry {
    XmlPlace place;
    std::vector<XmlPlace> functions;
};

struct ConfigNote {
    XmlPlace place;
    std::string text;
};

class ConfigDocument {
public:
    // Throws std::runtime_error with the parser's description and place.
    static ConfigDocument Load(const std::string& path);
    // What in the file's bytes keeps the library from reading it whole
    // (empty, UTF-16, binary, a NUL byte, an unclosed comment, a DOCTYPE
    // subset) without its own words saying so; none when it cannot be read.
    static std::optional<ConfigNote> ByteProblem(const std::string& path);
    // The file's bytes; none when it cannot be opened.
    static std::optional<std::string> ReadBytes(const std::string& path);
    // A value declaration's type as the library matches it: case does not count.
    static std::string TypeKeyword(const TiXmlElement& declaration);

    std::vector<GestureEntry> gestures;
    std::vector<ProcessingEntry> processings;
    std::vector<XmlPlace> refusedValueTypes;  // the library's "type is undefine" lines, in order
    std::vector<XmlPlace> quaternions;        // its "Quaternion is not supported" lines, in order
    std::vector<ConfigNote> ignored;          // dropped or broken without a message
};

}  // namespace PelmoraTool
