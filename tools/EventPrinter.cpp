#include "tools/EventPrinter.h"

#include <nlohmann/json.hpp>

#include <ostream>

#include "tools/Numbers.h"

namespace PelmoraTool {

void EventPrinter::Print(const GestureEvent& event) {
    if (!m_AllEvents && event.kind != EventKind::Finished) return;
    if (m_Jsonl) {
        PrintJson(event);
    } else {
        PrintText(event);
    }
    // Line by line: a paced replay shows each event when it happens.
    m_Out.flush();
}

void EventPrinter::PrintText(const GestureEvent& event) {
    m_Out << Numbers::Format(event.timeMs) << " ms frame " << event.frame << " player " << event.player << ": "
          << event.gesture << ' ' << EventName(event.kind) << " segment " << event.segment;
    if (!event.label.empty()) m_Out << " [" << event.label << ']';
    m_Out << '\n';
}

void EventPrinter::PrintJson(const GestureEvent& event) {
    nlohmann::ordered_json line = {{"time_ms", event.timeMs},  {"frame", event.frame},
                                   {"player", event.player},   {"gesture", event.gesture},
                                   {"event", EventName(event.kind)}, {"segment", event.segment}};
    if (!event.label.empty()) line["label"] = event.label;
    m_Out << line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace PelmoraTool
