#include "tools/Report.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

using PelmoraLib::Qualification;

const double kWidth = 1100.0;
const double kLeft = 170.0;   // room for lane titles
const double kRight = 20.0;
const double kTop = 10.0;
const double kPlotHeight = 70.0;
const double kLaneGap = 12.0;
const double kAxisHeight = 30.0;
const double kMaxTicks = 20.0;
const char* const kLabelColours[] = {"#f2c94c", "#6fcf97", "#56ccf2", "#bb6bd9", "#f2994a", "#eb5757"};

std::string Escape(const std::string& text) {
    std::string escaped;
    for (char c : text) {
        switch (c) {
            case '&': escaped += "&amp;"; break;
            case '<': escaped += "&lt;"; break;
            case '>': escaped += "&gt;"; break;
            case '"': escaped += "&quot;"; break;
            case '\'': escaped += "&#39;"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

// Pixel coordinates with one decimal: exact enough, and small files.
std::string Px(double value) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%.1f", value);
    return buffer;
}

// Four significant digits, or as many more as it takes to tell a near
// miss from its threshold.
std::string Measured(double value, double threshold) {
    char buffer[32], limit[32];
    for (int digits = 4;; ++digits) {
        snprintf(buffer, sizeof buffer, "%.*g", digits, value);
        snprintf(limit, sizeof limit, "%.*g", digits, threshold);
        if (strcmp(buffer, limit) != 0 || value == threshold || digits == 17) return buffer;
    }
}

std::string Seconds(double timeMs) { return Numbers::Format(std::round(timeMs) / 1000.0) + " s"; }

double LaneHeight(const GestureLane& lane) { return 24.0 + 14.0 * std::min<uint32_t>(std::max<uint32_t>(lane.segmentCount, 1), 6); }

// Maps the player's time range onto the drawing width.
struct TimeScale {
    double startMs;
    double spanMs;

    explicit TimeScale(const PlayerTimeline& player)
        : startMs(player.startMs), spanMs(std::max(player.endMs - player.startMs, 1.0)) {}

    double X(double timeMs) const { return kLeft + (timeMs - startMs) / spanMs * (kWidth - kLeft - kRight); }
};

// Tick distance of 1, 2 or 5 times a power of ten giving about eight ticks.
double TickStep(double spanMs) {
    const double raw = spanMs / 8.0;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= raw) return factor * power;
    }
    return 10.0 * power;
}

// Points of a step line through (time, value) samples, with a corner only
// where the value changes.
std::string StepPoints(const std::vector<TimePoint>& samples, const TimeScale& scale, double endMs,
                       const std::function<double(double)>& y) {
    std::string points;
    double last = std::nan("");
    for (const TimePoint& sample : samples) {
        if (sample.value == last) continue;
        const std::string x = Px(scale.X(sample.timeMs));
        if (!std::isnan(last)) points += x + "," + Px(y(last)) + " ";
        points += x + "," + Px(y(sample.value)) + " ";
        last = sample.value;
    }
    if (!std::isnan(last)) points += Px(scale.X(endMs)) + "," + Px(y(last));
    return points;
}

std::string LabelTitle(const LabelSpan& span) {
    const std::string range = Seconds(span.startMs) + " to " + Seconds(span.endMs);
    if (span.runs == 1) return Escape(span.label) + ": " + range;
    return std::to_string(span.runs) + " labelled runs, " + range + ", the first " + Escape(span.label);
}

void WriteLabels(std::ostream& out, const PlayerTimeline& player, const TimeScale& scale, double height) {
    out << "<g class=\"labels\">\n";
    for (const LabelSpan& span : player.labels) {
        const size_t colour = std::hash<std::string>()(span.label) % (sizeof kLabelColours / sizeof kLabelColours[0]);
        const double x = scale.X(span.startMs);
        out << "<rect class=\"label-span\" x=\"" << Px(x) << "\" y=\"" << Px(kTop) << "\" width=\""
            << Px(std::max(scale.X(span.endMs) - x, 1.0)) << "\" height=\"" << Px(height - kTop) << "\" fill=\""
            << kLabelColours[colour] << "\"><title>" << LabelTitle(span) << "</title></rect>\n";
        out << "<text class=\"label-text\" x=\"" << Px(x + 2) << "\" y=\"" << Px(kTop + 10) << "\">" << Escape(span.label)
            << "</text>\n";
    }
    out << "</g>\n";
}

void WritePlot(std::ostream& out, const PlotSeries& series, const TimeScale& scale, double top) {
    double low = 0.0, high = 0.0;
    const std::vector<TimePoint>& points = series.points.Points();
    if (!points.empty()) {
        const auto [minimum, maximum] = std::minmax_element(points.begin(), points.end(),
                                                            [](const TimePoint& a, const TimePoint& b) { return a.value < b.value; });
        low = minimum->value;
        high = maximum->value;
    }
    const double range = high > low ? high - low : 1.0;
    const auto y = [&](double value) { return top + kPlotHeight - 4.0 - (value - low) / range * (kPlotHeight - 8.0); };
    out << "<g class=\"plot\" data-value=\"" << Escape(series.name) << "\">\n"
        << "<text class=\"title\" x=\"8\" y=\"" << Px(top + 16) << "\">" << Escape(series.name) << "</text>\n"
        << "<text class=\"range\" x=\"8\" y=\"" << Px(top + 32) << "\">" << Numbers::Format(static_cast<float>(low))
        << " .. " << Numbers::Format(static_cast<float>(high)) << "</text>\n"
        << "<polyline class=\"series\" points=\"";
    for (const TimePoint& point : points) out << Px(scale.X(point.timeMs)) << ',' << Px(y(point.value)) << ' ';
    out << "\"/>\n</g>\n";
}

void WriteMarker(std::ostream& out, const LaneMarker& marker, const TimeScale& scale, double y) {
    const double x = scale.X(marker.timeMs);
    const std::string what = marker.count == 1 ? std::string(EventName(marker.kind)) + " at " + Seconds(marker.timeMs) +
                                                     ", segment " + std::to_string(marker.segment)
                                               : std::to_string(marker.count) + " " + EventName(marker.kind) + "s from " +
                                                     Seconds(marker.timeMs) + " to " + Seconds(marker.lastMs);
    if (marker.kind == EventKind::Finished) {
        out << "<circle class=\"finish\" cx=\"" << Px(x) << "\" cy=\"" << Px(y) << "\" r=\"5\"><title>" << what
            << "</title></circle>\n";
        return;
    }
    out << "<path class=\"reset\" d=\"M" << Px(x - 4) << ',' << Px(y - 4) << " L" << Px(x + 4) << ',' << Px(y + 4) << " M"
        << Px(x - 4) << ',' << Px(y + 4) << " L" << Px(x + 4) << ',' << Px(y - 4) << "\"><title>" << what
        << "</title></path>\n";
}

void WriteLane(std::ostream& out, const GestureLane& lane, size_t player, size_t index, const PlayerTimeline& timeline,
               const TimeScale& scale, double top) {
    const double height = LaneHeight(lane);
    const double levels = std::max<uint32_t>(lane.segmentCount, 1);
    const double bottom = top + height - 8.0;
    const auto y = [&](double segment) { return bottom - segment / levels * (height - 20.0); };
    out << "<g class=\"lane\" id=\"lane-" << player << '-' << index << "\" data-gesture=\"" << Escape(lane.name) << "\">\n"
        << "<text class=\"title\" x=\"8\" y=\"" << Px(top + 16) << "\">" << Escape(lane.name) << "</text>\n"
        << "<text class=\"range\" x=\"8\" y=\"" << Px(top + 32) << "\">" << lane.segmentCount << " segments</text>\n"
        << "<line class=\"base\" x1=\"" << Px(kLeft) << "\" x2=\"" << Px(kWidth - kRight) << "\" y1=\"" << Px(bottom)
        << "\" y2=\"" << Px(bottom) << "\"/>\n"
        << "<polyline class=\"progress\" points=\"" << StepPoints(lane.progress.Points(), scale, timeline.endMs, y) << "\"/>\n";
    for (const LaneMarker& marker : lane.markers) WriteMarker(out, marker, scale, y(0.0) - 6.0);
    out << "</g>\n";
}

void WriteAxis(std::ostream& out, const PlayerTimeline& player, const TimeScale& scale, double top) {
    out << "<g class=\"axis\">\n<line x1=\"" << Px(kLeft) << "\" x2=\"" << Px(kWidth - kRight) << "\" y1=\"" << Px(top)
        << "\" y2=\"" << Px(top) << "\"/>\n";
    const double step = TickStep(scale.spanMs);
    const double first = std::ceil(player.startMs / step) * step;
    // Counted rather than stepped: far from zero, adding a step a thousand
    // times smaller than the time itself leaves the time unchanged.
    const double count = std::min(std::floor((player.startMs + scale.spanMs - first) / step), kMaxTicks);
    for (int k = 0; k <= count; ++k) {
        const double t = first + k * step;
        const double x = scale.X(t);
        out << "<line x1=\"" << Px(x) << "\" x2=\"" << Px(x) << "\" y1=\"" << Px(top) << "\" y2=\"" << Px(top + 5)
            << "\"/><text x=\"" << Px(x) << "\" y=\"" << Px(top + 18) << "\">" << Seconds(t) << "</text>\n";
    }
    out << "</g>\n";
}

double ContentHeight(const PlayerTimeline& player) {
    double height = kTop + player.plots.size() * (kPlotHeight + kLaneGap);
    for (const GestureLane& lane : player.lanes) height += LaneHeight(lane) + kLaneGap;
    return height;
}

void WriteTimeline(std::ostream& out, const PlayerTimeline& player, size_t index) {
    const TimeScale scale(player);
    const double content = ContentHeight(player);
    const double height = content + kAxisHeight;
    out << "<svg class=\"timeline\" xmlns=\"http://www.w3.org/2000/svg\" width=\"" << Px(kWidth) << "\" height=\""
        << Px(height) << "\" viewBox=\"0 0 " << Px(kWidth) << ' ' << Px(height) << "\" data-start=\"" << Numbers::Format(player.startMs)
        << "\" data-end=\"" << Numbers::Format(player.startMs + scale.spanMs) << "\" data-left=\"" << kLeft << "\" data-right=\""
        << kWidth - kRight << "\">\n";
    WriteLabels(out, player, scale, content);
    double top = kTop;
    for (const PlotSeries& series : player.plots) {
        WritePlot(out, series, scale, top);
        top += kPlotHeight + kLaneGap;
    }
    for (size_t k = 0; k < player.lanes.size(); ++k) {
        WriteLane(out, player.lanes[k], index, k, player, scale, top);
        top += LaneHeight(player.lanes[k]) + kLaneGap;
    }
    WriteAxis(out, player, scale, content);
    out << "<line class=\"cursor\" x1=\"-10\" x2=\"-10\" y1=\"" << Px(kTop) << "\" y2=\"" << Px(content) << "\"/>\n"
        << "<text class=\"cursor-time\" x=\"-10\" y=\"" << Px(kTop + 24) << "\"></text>\n</svg>\n";
}

// How a comparison reads with the followed operand on its left.
struct ComparisonWords {
    const char* symbol;
    const char* nearest;                        // the followed operand's nearest value
    Qualification::QualificationEnum mirrored;  // the kind with the operands swapped
};

const ComparisonWords& WordsFor(Qualification::QualificationEnum kind) {
    static const ComparisonWords words[] = {
        {"=", "came closest at", Qualification::Equal}, {"!=", "", Qualification::NoEqual},
        {"&gt;", "peaked at", Qualification::Less},     {"&lt;", "bottomed out at", Qualification::Greate},
        {"&gt;=", "peaked at", Qualification::ELess},   {"&lt;=", "bottomed out at", Qualification::EGreate}};
    return words[kind];
}

bool IsReference(const std::string& operand) { return operand.rfind('@', 0) == 0; }

// A literal as written; a value by name, with what it held then.
std::string Threshold(const std::string& operand, double value) {
    if (!IsReference(operand)) return Escape(operand);
    return Escape(operand.substr(1)) + " (" + Measured(value, value) + ")";
}

// "HandAboveHead peaked at 0.15 (1.2 s), needs &gt; 0.2", or nothing. The
// followed operand is the left one, unless only the right one names a value.
std::string ApproachText(const WhyNot& why) {
    const Qualification::QualificationEnum kind = Qualification::GetQualificationEnum(why.entry.kind.c_str());
    if (!why.closest.Seen() || kind == Qualification::Error) return "";
    const QualificationEntry& q = why.entry;
    const bool leftFollowed = IsReference(q.value1) || !IsReference(q.value2);
    const std::string& followed = leftFollowed ? q.value1 : q.value2;
    const ComparisonWords& words = WordsFor(leftFollowed ? kind : WordsFor(kind).mirrored);
    const double value = leftFollowed ? why.closest.left : why.closest.right;
    const double other = leftFollowed ? why.closest.right : why.closest.left;
    return Escape(IsReference(followed) ? followed.substr(1) : followed) + " " + words.nearest + " " +
           Measured(value, other) + " (" + Seconds(why.closest.timeMs) + "), needs " + words.symbol + " " +
           Threshold(leftFollowed ? q.value2 : q.value1, other);
}

std::string Cell(const std::string& text) { return "<td>" + (text.empty() ? std::string("-") : text) + "</td>"; }

std::string WhyNotText(const WhyNot& why) {
    if (!why.waited) return "<td>never waited</td><td>every check succeeded</td><td>-</td>";
    std::string text = "<td>segment " + std::to_string(why.segment) + " (" + std::to_string(why.waitingChecks) +
                       " failed checks)</td><td>";
    if (why.qualification < 0) return text + "no single qualification</td><td>-</td>";
    return text + "qualification " + std::to_string(why.qualification) + ": <code>" + Escape(why.description) +
           "</code> (" + std::to_string(why.decidingChecks) + " of " + std::to_string(why.waitingChecks) + ")</td>" +
           Cell(ApproachText(why));
}

// What held the gesture back in one missed run, in a few words.
std::string MissText(const WhyNot& why) {
    if (!why.waited) return "no check failed";
    const std::string approach = ApproachText(why);
    if (!approach.empty()) return approach;
    if (why.qualification < 0) return "segment " + std::to_string(why.segment) + ", no single qualification";
    return "<code>" + Escape(why.description) + "</code>";
}

// "1 of 3<br>from 26.8 s: LeftFootUp peaked at ...": the first few misses.
std::string MissesText(const GestureLane& lane) {
    if (lane.labelledRuns == 0) return "";
    std::string text = std::to_string(lane.missedRuns) + " of " + std::to_string(lane.labelledRuns);
    for (const MissedRun& miss : lane.misses) text += "<br>from " + Seconds(miss.startMs) + ": " + MissText(miss.why);
    if (lane.missedRuns > lane.misses.size())
        text += "<br>and " + std::to_string(lane.missedRuns - lane.misses.size()) + " more";
    return text;
}

void WriteWhyNot(std::ostream& out, const PlayerTimeline& player) {
    out << "<table class=\"why-not\">\n<tr><th>Gesture</th><th>Finishes</th><th>Waited longest in</th>"
           "<th>Most often failing there</th><th>Nearest it came</th><th>Runs of its name missed</th></tr>\n";
    for (const GestureLane& lane : player.lanes) {
        out << "<tr data-gesture=\"" << Escape(lane.name) << "\"><td>" << Escape(lane.name) << "</td><td>"
            << lane.Count(EventKind::Finished) << "</td>" << WhyNotText(lane.Explain()) << Cell(MissesText(lane))
            << "</tr>\n";
    }
    out << "</table>\n";
}

const char* const kStyle = R"(<style>
body { font-family: sans-serif; margin: 20px; color: #222; }
svg.timeline { border: 1px solid #ccc; background: #fff; }
svg text { font-size: 11px; fill: #333; }
svg .title { font-weight: bold; }
svg .range { fill: #777; }
.label-span { opacity: 0.25; }
.label-text { font-size: 10px; fill: #555; }
.series { fill: none; stroke: #2d6cdf; stroke-width: 1.2; }
.progress { fill: none; stroke: #333; stroke-width: 1.5; }
.base, .axis line { stroke: #bbb; }
.finish { fill: #27ae60; }
.reset { stroke: #c0392b; stroke-width: 2; fill: none; }
.cursor { stroke: #999; stroke-dasharray: 3 3; }
table.why-not { border-collapse: collapse; margin: 10px 0 30px; }
table.why-not td, table.why-not th { border: 1px solid #ccc; padding: 4px 8px; text-align: left; }
</style>
)";

// Moves a time cursor with the mouse; marks the page rendered when it ran.
const char* const kScript = R"(<script>
(function () {
  document.querySelectorAll('svg.timeline').forEach(function (svg) {
    var cursor = svg.querySelector('.cursor'), label = svg.querySelector('.cursor-time');
    var start = parseFloat(svg.dataset.start), end = parseFloat(svg.dataset.end);
    var left = parseFloat(svg.dataset.left), right = parseFloat(svg.dataset.right);
    svg.addEventListener('mousemove', function (event) {
      var x = event.clientX - svg.getBoundingClientRect().left;
      if (x < left || x > right) return;
      var t = start + (x - left) / (right - left) * (end - start);
      cursor.setAttribute('x1', x);
      cursor.setAttribute('x2', x);
      label.setAttribute('x', x + 4);
      label.textContent = (t / 1000).toFixed(3) + ' s';
    });
  });
  document.body.setAttribute('data-rendered', String(document.querySelectorAll('g.lane').length));
  document.title += ' (ready)';
})();
</script>
)";

}  // namespace

void Report::Write(const Timeline& timeline, std::ostream& out) {
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>Pelmora replay: "
        << Escape(timeline.recording) << "</title>\n" << kStyle << "</head>\n<body>\n"
        << "<h1>Pelmora replay</h1>\n<p>Configuration <code>" << Escape(timeline.config) << "</code>, recording <code>"
        << Escape(timeline.recording) << "</code>. Lanes show the segment each gesture waits in; "
        << "green dots are finishes, red crosses resets, shaded spans the recording's labels.</p>\n";
    for (size_t p = 0; p < timeline.players.size(); ++p) {
        const PlayerTimeline& player = timeline.players[p];
        out << "<section class=\"player\" id=\"player-" << p << "\" data-player=\"" << player.player << "\">\n<h2>Player "
            << player.player << "</h2>\n";
        WriteTimeline(out, player, p);
        WriteWhyNot(out, player);
        out << "</section>\n";
    }
    out << kScript << "</body>\n</html>\n";
}

void Report::CheckWritable(const std::string& path) {
    const bool existed = access(path.c_str(), F_OK) == 0;
    if (!std::ofstream(path, std::ios::app)) throw std::runtime_error("cannot write " + path);
    if (!existed) std::remove(path.c_str());
}

void Report::WriteFile(const Timeline& timeline, const std::string& path) {
    std::ofstream out(path, std::ios::binary);
    if (!out) throw std::runtime_error("cannot write " + path);
    Write(timeline, out);
    if (!out) throw std::runtime_error("writing " + path + " failed");
}

}  // namespace PelmoraTool
