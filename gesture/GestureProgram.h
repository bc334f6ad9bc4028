// GestureProgram - a player's gestures laid out for checking: every
// qualification of every gesture as a small record in one array, ordered by
// segment depth, then gesture, then qualification, with where its two
// numbers are stored, its comparison and its flags copied in. A pass over hundreds of gestures then
// walks a few contiguous arrays instead of chasing gesture, segment and
// qualification objects across the heap. Checking gives exactly what
// Gesture::DoCheck gives.
//
// The literal constants the qualifications compare with are copied into the
// program, side by side: a woken worker's pass would otherwise fetch one
// cache line per constant from wherever the configuration's load left it.
// Constants are never written, so the copies stay exact.
//
// The gesture objects stay the definition. Any change to them (a segment or
// qualification added, a qualification set, its flags changed, a table
// filled or cleared) moves the process-wide gesture epoch, and a table
// rebuilds its program when asked for it under a newer epoch.
// Thread-safety: none; built and used by the thread that updates the player.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "gesture/Qualification.h"

namespace PelmoraLib {

class Gesture;
class ValuesTable;

namespace GestureEpoch {
// Called by everything that changes a gesture's definition.
void Advance();
uint64_t Current();
}  // namespace GestureEpoch

class GestureProgram {
    struct Step;
    struct Entry;

public:
    // `literals`, when given, is the pool whose literal constants the
    // gestures compare with; without it every operand is read where it lives.
    void Build(const std::vector<Gesture*>& gestures, const ValuesTable* literals);

    // The program's arrays for one pass: a local copy of their addresses
    // lets the compiler keep them in registers while records are written.
    class View {
    public:
        size_t GestureCount() const { return m_Count; }
        uint64_t SegmentCount(size_t gesture) const { return m_Gestures[gesture].segmentCount; }

        // Gesture::DoCheck of the gesture at `gesture` (< GestureCount()).
        Qualification::Result Check(size_t gesture, size_t segmentIndex) const {
            const Entry& entry = m_Gestures[gesture];
            if (segmentIndex >= entry.laidOut) return Fallback(m_Objects[gesture], segmentIndex);
            const uint32_t range = m_Segments[entry.firstSegment + segmentIndex];
            const Step* step = m_Steps + (range >> kCountBits);
            const Step* end = step + (range & kMaxCount);
            for (; step != end; ++step) {
                const Qualification::Result result = step->Evaluate(m_Operands);
                if (result != Qualification::Succeed) return result;
            }
            return Qualification::Succeed;
        }

    private:
        friend class GestureProgram;
        const Entry* m_Gestures = nullptr;
        Gesture* const* m_Objects = nullptr;
        const uint32_t* m_Segments = nullptr;
        const Step* m_Steps = nullptr;
        const void* const* m_Operands = nullptr;
        size_t m_Count = 0;
    };

    View GetView() const {
        View view;
        view.m_Gestures = m_Gestures.data();
        view.m_Objects = m_Objects.data();
        view.m_Segments = m_Segments.data();
        view.m_Steps = m_Steps.data();
        view.m_Operands = m_Reads.data();
        view.m_Count = m_Gestures.size();
        return view;
    }

private:
    // One qualification. Resolved ones carry everything a check reads, with
    // Less and ELess turned into Greate and EGreate of the swapped operands
    // and NoEqual into a negated Equal, so that a check is one of three
    // tests on one of four operand forms; the others (operands reached
    // through the values) point back to their qualification.
    enum Operation : uint8_t {
        kGeneral = 0,
        kFloatAbove, kFloatAboveOrEqual, kFloatEqual,
        kIntAbove, kIntAboveOrEqual, kIntEqual,
        kIntFloatAbove, kIntFloatAboveOrEqual, kIntFloatEqual,
        kFloatIntAbove, kFloatIntAboveOrEqual, kFloatIntEqual
    };

    // A step names its operands by their place in the program's operand
    // table, the distinct storage addresses its qualifications read: eight
    // bytes a step instead of twenty-four, so that the steps a pass visits
    // share cache lines and pages. A gesture whose operands would not fit
    // sixteen-bit places is left to its objects.
    static const size_t kMaxOperands = 0x10000;

    struct Step {
        uint16_t left;   // kGeneral: the Qualification
        uint16_t right;
        uint8_t operation;
        // The result when the test holds and when it does not: a negated
        // kind swaps them, a qualification that finishes has Succeed_Finish
        // in both, and a failing one has Failed or Reset.
        uint8_t onTrue;
        uint8_t onFalse;

        static float F(const void* storage) { return *static_cast<const float*>(storage); }
        static int32_t I(const void* storage) { return *static_cast<const int32_t*>(storage); }
        static float IF(const void* storage) { return static_cast<float>(I(storage)); }

        Qualification::Result Evaluate(const void* const* operands) const {
            const void* l = operands[left];
            const void* r = operands[right];
            bool holds;
            // The commonest tests (after the swap every "less" is an "above")
            // by direct branches, which predict better than the table.
            if (operation == kFloatAbove) {
                holds = F(l) > F(r);
            } else if (operation == kIntAbove) {
                holds = I(l) > I(r);
            } else if (operation == kFloatAboveOrEqual) {
                holds = F(l) >= F(r);
            } else if (operation == kIntAboveOrEqual) {
                holds = I(l) >= I(r);
            } else {
                switch (operation) {
                case kFloatEqual: holds = F(l) == F(r); break;
                case kIntEqual: holds = I(l) == I(r); break;
                case kIntFloatAbove: holds = IF(l) > F(r); break;
                case kIntFloatAboveOrEqual: holds = IF(l) >= F(r); break;
                case kIntFloatEqual: holds = IF(l) == F(r); break;
                case kFloatIntAbove: holds = F(l) > IF(r); break;
                case kFloatIntAboveOrEqual: holds = F(l) >= IF(r); break;
                case kFloatIntEqual: holds = F(l) == IF(r); break;
                default: return static_cast<Qualification*>(const_cast<void*>(l))->Check();
                }
            }
            return static_cast<Qualification::Result>(holds ? onTrue : onFalse);
        }
    };

    // A step before its operands have places.
    struct WideStep {
        const void* left;
        const void* right;
        uint8_t operation;
        uint8_t onTrue;
        uint8_t onFalse;
    };

    // A gesture whose first segment is kIndirect lacks a segment or a
    // qualification object: it is checked through its objects.
    static const uint32_t kIndirect = 0xFFFFFFFFu;
    struct Entry {
        uint32_t firstSegment;
        uint32_t segmentCount;
        uint32_t laidOut;  // segments in the program: segmentCount, or 0 when kIndirect
    };

    // Steps are laid out segment by segment: the first segments of all
    // gestures, then all second segments, and so on. Most gestures wait in
    // the same segment (the first, until they start), so the steps a pass
    // visits lie side by side. A segment is found by one word: its first
    // step above kCountBits bits of its step count. A gesture with a segment
    // of more steps, or beyond the steps one word can place, is left to its
    // objects.
    static const unsigned kCountBits = 8;
    static const uint32_t kMaxCount = (1u << kCountBits) - 1;
    static const uint64_t kMaxSteps = uint64_t{1} << (32 - kCountBits);

    static bool ReadsInt(const Qualification& qualification, bool left);
    static WideStep StepOf(Qualification& qualification);
    static bool IsComplete(const Gesture* gesture);
    void CollectOperands(const std::vector<Gesture*>& gestures, const ValuesTable* literals);
    // m_Reads: m_Operands, with the literal constants' places pointing at
    // copies in m_Literals.
    void CopyLiterals();
    uint32_t PlaceOf(const void* operand) const;
    // Whether the (complete) gesture can be laid out: every operand has a
    // sixteen-bit place and no segment has more than kMaxCount steps.
    bool Fits(const Gesture& gesture) const;
    // Appends the steps of segment `depth` of every laid-out gesture that has
    // one; false when the steps would go beyond kMaxSteps.
    bool LayOutSegments(const std::vector<Gesture*>& gestures, uint64_t depth);
    static Qualification::Result Fallback(const Gesture* gesture, size_t segmentIndex);

    std::vector<Entry> m_Gestures;
    std::vector<Gesture*> m_Objects;
    std::vector<uint32_t> m_Segments;  // each laid-out gesture's segments in a row
    std::vector<Step> m_Steps;
    std::vector<const void*> m_Operands;  // sorted, distinct
    std::vector<const void*> m_Reads;     // by place: what a step reads
    // A copied constant, read through the member of its type.
    union Literal {
        int32_t i;
        float f;
    };
    std::vector<Literal> m_Literals;
    // The storage of the operands that are literal constants, sorted, and
    // whether each holds an int.
    std::vector<std::pair<const void*, bool>> m_LiteralStorage;
};

}  // namespace PelmoraLib
