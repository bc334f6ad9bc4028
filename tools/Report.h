// Report - the replay's visual report: one self-contained HTML file (inline
// SVG and script, nothing fetched). Per player a time axis with the plotted
// values, one lane per gesture with its segment over time and markers for
// finishes and resets, the recording's labels as shaded spans, and a table
// that says, for each gesture, which qualification most often failed in the
// segment where it waited longest.
#pragma once

#include <iosfwd>
#include <string>

#include "tools/Timeline.h"

namespace PelmoraTool {

class Report {
public:
    static void Write(const Timeline& timeline, std::ostream& out);
    static void WriteFile(const Timeline& timeline, const std::string& path);
    // Throws std::runtime_error when the page could not be written there;
    // leaves the file as it was.
    static void CheckWritable(const std::string& path);
};

}  // namespace PelmoraTool
