// EventPrinter - writes replay events, one line each, as text or as JSON
// Lines; by default only finishes.
#pragma once

#include <iosfwd>

#include "tools/GestureEvent.h"

namespace PelmoraTool {

class EventPrinter {
public:
    EventPrinter(std::ostream& out, bool jsonl, bool allEvents) : m_Out(out), m_Jsonl(jsonl), m_AllEvents(allEvents) {}

    void Print(const GestureEvent& event);

private:
    void PrintText(const GestureEvent& event);
    void PrintJson(const GestureEvent& event);

    std::ostream& m_Out;
    bool m_Jsonl;
    bool m_AllEvents;
};

}  // namespace PelmoraTool
