// Gesture - a named, ordered list of segments. It holds no progress: the
// player's records say which segment to check, so one compiled gesture serves
// every check of its player.
// Thread-safety: none; checked by the thread that updates its player.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "gesture/Segment.h"

namespace PelmoraLib {

class PELMORA_API Gesture {
public:
    Gesture() = default;
    explicit Gesture(const char* name) : m_Name(name ? name : "") {}
    ~Gesture();
    Gesture(const Gesture&) = delete;
    Gesture& operator=(const Gesture&) = delete;

    const char* GetName() const { return m_Name.c_str(); }
    uint64_t GetSegmentSize() const { return m_Segments.size(); }
    void Clear();

    Qualification::Result DoCheck(size_t segmentIndex);
    Qualification::Result DoCheckAndPrint(size_t segmentIndex);
    // DoCheck, inline for the player's gesture loop.
    inline Qualification::Result Evaluate(size_t segmentIndex) const;

    // Takes ownership; used by the configuration compiler.
    void AddSegment(Segment* segment);
    void Reserve(size_t count) { m_Segments.reserve(count); }
    Segment* GetSegment(size_t index) const { return index < m_Segments.size() ? m_Segments[index] : nullptr; }

private:
    static Qualification::Result SegmentOutOfRange();

    std::string m_Name;
    std::vector<Segment*> m_Segments;
};

inline Qualification::Result Gesture::Evaluate(size_t segmentIndex) const {
    if (segmentIndex >= m_Segments.size()) return SegmentOutOfRange();
    return m_Segments[segmentIndex]->Evaluate();
}

}  // namespace PelmoraLib
