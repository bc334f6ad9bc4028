#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "support/GestureTableAccess.h"
#include "support/Printed.h"
#include "engine/Pelmora.h"
#include "gesture/GestureTable.h"
#include "pelmora.h"
#include "values/IdentifyValues.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using Q = Qualification;

using PelmoraTest::Printed;

namespace {

const char* const kNoEngine =
    "Pelmora::Instance do not been created before calling get function.\n"
    "PelmoraLib::Qualification::CheckAndPrint line: 186 Error: Pelmora::Instance is NULL\n";

// A player's pool with a few declared values; P_Head is (0, 0.8, 0).
struct Pool : IdentifyValues {
    Pool() {
        CreateValue(BaseValue::Int, "I3", "3");
        CreateValue(BaseValue::Float, "F1", "1.0");
        CreateValue(BaseValue::Float, "NaN", "nan");
        static_cast<Vector3Value*>(GetValue("P_Head"))->Set(0.0f, 0.8f, 0.0f);
    }
    // "a kind b", operands written as in a document ("@Name", "@Name.y" or a literal).
    Q* Make(const char* a, const char* kind, const char* b, bool reset = false, bool finish = false) {
        BaseValue::SubType subA, subB;
        BaseValue* valueA = GetValueFromString(a, subA, false);
        BaseValue* valueB = GetValueFromString(b, subB, false);
        Q* q = new Q;
        q->SetResetOnFailed(reset);
        q->SetFinishOnSucceed(finish);
        EXPECT_TRUE(q->SetQualification(Q::GetQualificationEnum(kind), valueA, subA, valueB, subB))
            << a << " " << kind << " " << b;
        return q;
    }
    // One qualification per letter: P holds, F fails, R fails with reset; with
    // the finish flag: X holds, E fails, Y fails with reset.
    Segment* MakeSegment(const std::string& pattern) {
        Segment* segment = new Segment;
        for (char c : pattern) {
            const bool holds = c == 'P' || c == 'X', reset = c == 'R' || c == 'Y';
            segment->AddQualification(Make("1", "Equal", holds ? "1" : "2", reset, c == 'X' || c == 'E' || c == 'Y'));
        }
        return segment;
    }
};

}  // namespace

// Keywords match exactly; the valid ones are all used by the comparison table below.
TEST(Qualification, Keywords) {
    for (const char* text : {"Count", "Error", "", "equal", "ELESS", "Greater", static_cast<const char*>(nullptr)})
        EXPECT_EQ(Q::GetQualificationEnum(text), Q::Error) << (text ? text : "null");
    EXPECT_EQ(Q::GetQualificationEnum("ELess"), Q::ELess);
    EXPECT_STREQ(Q::GetQualificationEnumName(Q::Count), "Count");
    EXPECT_STREQ(Q::GetQualificationEnumName(Q::Error), "Error");
}

TEST(Qualification, Comparisons) {
    Pool pool;
    // Every kind for every pairing of int and float parts, with the left part
    // above, equal to and below the right one.
    const char* const kinds[] = {"Equal", "NoEqual", "Greate", "Less", "EGreate", "ELess"};
    const char* const rights[2][3] = {{"1", "2", "3"}, {"1.5", "2.0", "2.5"}};
    for (const char* left : {"2", "2.0"})
        for (const auto& right : rights)
            for (int order = 0; order < 3; ++order) {
                const bool holds[] = {order == 1, order != 1, order == 0, order == 2, order <= 1, order >= 1};
                for (int kind = 0; kind < 6; ++kind) {
                    std::unique_ptr<Q> q(pool.Make(left, kinds[kind], right[order]));
                    EXPECT_EQ(q->Check(), holds[kind] ? Q::Succeed : Q::Failed)
                        << left << kinds[kind] << right[order];
                }
            }

    const struct { const char* a; const char* kind; const char* b; Q::Result result; } rows[] = {
        {"1.0000001", "Equal", "@F1", Q::Failed},         // no tolerance
        {"16777217", "Equal", "16777216.0", Q::Succeed},  // the int meets the float in single precision
        {"16777217", "NoEqual", "16777216", Q::Succeed},  // two ints stay ints
        {"-1", "Less", "0", Q::Succeed},                  {"@I3", "ELess", "2", Q::Failed},
        {"@NaN", "Equal", "@NaN", Q::Failed},             {"@NaN", "NoEqual", "@NaN", Q::Succeed},
        {"@NaN", "EGreate", "1", Q::Failed},              {"1.0", "ELess", "@NaN", Q::Failed},
        {"@P_Head.y", "Greate", "0.5", Q::Succeed},       {"0.5", "Greate", "@P_Head.y", Q::Failed},
    };
    for (const auto& row : rows) {
        std::unique_ptr<Q> q(pool.Make(row.a, row.kind, row.b));
        EXPECT_EQ(q->Check(), row.result) << row.a << " " << row.kind << " " << row.b;
    }

    // Operands are read again on every check.
    std::unique_ptr<Q> q(pool.Make("@P_Head.y", "Greate", "0.5"));
    static_cast<Vector3Value*>(pool.GetValue("P_Head"))->Set(0.0f, 0.2f, 0.0f);
    EXPECT_EQ(q->Check(), Q::Failed);

    // Refused: a whole vector, Count, Error; the qualification stays as it was.
    const BaseValue::SubType whole = BaseValue::SubWhole;
    BaseValue* head = pool.GetValue("P_Head");
    BaseValue* one = pool.GetConstValue("1");
    EXPECT_FALSE(q->SetQualification(Q::Equal, head, whole, one, whole));
    EXPECT_FALSE(q->SetQualification(Q::Equal, one, whole, head, whole));
    EXPECT_FALSE(q->SetQualification(Q::Count, one, whole, one, whole));
    EXPECT_FALSE(q->SetQualification(Q::Error, one, whole, one, whole));
    EXPECT_EQ(q->GetKind(), Q::Greate);
    EXPECT_EQ(q->Check(), Q::Failed);
    Q fresh;
    EXPECT_FALSE(fresh.SetQualification(Q::Less, head, whole, head, whole));
    EXPECT_EQ(fresh.GetKind(), Q::Error);
}

// A finish flag wins over the comparison and over reset; in a segment the
// first qualification that does not plainly succeed decides and nothing after
// it is checked (the printing twin shows one line per checked qualification).
TEST(Segment, ResultFlagsAndOrder) {
    Pool pool;
    Pelmora::Create();
    const struct { const char* pattern; Q::Result result; long checked; } rows[] = {
        {"P", Q::Succeed, 1},        {"F", Q::Failed, 1},         {"R", Q::Reset, 1},
        {"X", Q::Succeed_Finish, 1}, {"E", Q::Succeed_Finish, 1}, {"Y", Q::Succeed_Finish, 1},
        {"", Q::Succeed, 0},         {"PP", Q::Succeed, 2},       {"PFR", Q::Failed, 2},
        {"RF", Q::Reset, 1},         {"RE", Q::Reset, 1},         {"ER", Q::Succeed_Finish, 1},
        {"PXF", Q::Succeed_Finish, 2}, {"PPR", Q::Reset, 3},
    };
    for (const auto& row : rows) {
        std::unique_ptr<Segment> segment(pool.MakeSegment(row.pattern));
        EXPECT_EQ(segment->OnCheck(), row.result) << row.pattern;
        Q::Result printedResult = Q::Failed;
        const std::string printed = Printed([&] { printedResult = segment->CheckAndPrint(); });
        EXPECT_EQ(printedResult, row.result) << row.pattern;
        EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), row.checked) << row.pattern;
    }
    Pelmora::Close();
}

TEST(Gesture, ChecksAndTrace) {
    Pool pool;
    Gesture wave("Wave");
    Segment* first = new Segment;
    first->AddQualification(pool.Make("@P_Head.y", "Greate", "0.5"));
    wave.AddSegment(first);
    Segment* second = new Segment;
    second->AddQualification(pool.Make("@P_Head.y", "Greate", "0.5"));
    second->AddQualification(pool.Make("@I3", "Less", "2", true));
    wave.AddSegment(second);
    wave.AddSegment(pool.MakeSegment("E"));
    wave.AddSegment(pool.MakeSegment("F"));
    ASSERT_EQ(wave.GetSegmentSize(), 4u);

    SetDebugInfo(false);
    Q::Result results[4];
    for (size_t index = 0; index < 4; ++index) results[index] = wave.DoCheck(index);
    const Q::Result expected[] = {Q::Succeed, Q::Reset, Q::Succeed_Finish, Q::Failed};
    EXPECT_TRUE(std::equal(results, results + 4, expected));

    // Without the engine the value lines are replaced by the error pair; the result stands.
    Q::Result result = Q::Failed;
    EXPECT_EQ(Printed([&] { result = wave.DoCheckAndPrint(0); }),
              std::string("---Begin To Check Gesture(Wave), Segment(0)\n") + kNoEngine +
                  "---End To Check Gesture(Wave), Segment(0). Result:(Equal)\n");
    EXPECT_EQ(result, Q::Succeed);

    Pelmora::Create();
    // The end line names the result through the kind names: long-standing log format.
    const struct { size_t index; const char* body; const char* end; } rows[] = {
        {0, "Succeed:Greate( P_Head.y(0.800000) , 0.5(0.500000) )\n", "Equal"},
        {1, "Succeed:Greate( P_Head.y(0.800000) , 0.5(0.500000) )\nReset:Less( I3(3) , 2(2) )\n", "Greate"},
        {2, "Succeed_Finish:Equal( 1(1) , 2(2) )\n", "Less"},
        {3, "Failed:Equal( 1(1) , 2(2) )\n", "NoEqual"},
    };
    for (const auto& row : rows) {
        const std::string index = std::to_string(row.index);
        EXPECT_EQ(Printed([&] { result = wave.DoCheckAndPrint(row.index); }),
                  "---Begin To Check Gesture(Wave), Segment(" + index + ")\n" + row.body +
                      "---End To Check Gesture(Wave), Segment(" + index + "). Result:(" + row.end + ")\n");
        EXPECT_EQ(result, results[row.index]);
    }
    for (size_t index : {size_t{4}, size_t{0xFFFFFFFF}}) {
        EXPECT_EQ(Printed([&] { result = wave.DoCheckAndPrint(index); }), "SegmentIndex Out of range!!\n");
        EXPECT_EQ(result, Q::Failed);
        EXPECT_EQ(Printed([&] { result = wave.DoCheck(index); }), "SegmentIndex Out of range!!\n");
        EXPECT_EQ(result, Q::Failed);
    }
    Pelmora::Close();
}

TEST(GestureTable, NamesAndIndices) {
    GestureTable table;
    Gesture* first = new Gesture("Wave");
    Gesture* second = new Gesture("Wave");
    GestureTableAccess::Add(table, first);
    GestureTableAccess::Add(table, new Gesture("Jump"));
    GestureTableAccess::Add(table, second);

    EXPECT_EQ(table.GetGestureNum(), 3u);
    EXPECT_EQ(table.GetGestureIndex("Wave"), 2u);  // the newest of the name
    EXPECT_EQ(table.GetGestureIndex("Jump"), 1u);
    EXPECT_EQ(table.GetGesture("Wave"), second);
    EXPECT_EQ(table.GetGesture(size_t{0}), first);  // still reachable by index
    for (const char* missing : {"wave", "WAVE", "Wave ", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(table.GetGestureIndex(missing), 0xFFFFFFFFu);
        EXPECT_EQ(table.GetGesture(missing), nullptr);
    }
    for (size_t index : {size_t{3}, size_t{0xFFFFFFFF}, ~size_t{0}}) EXPECT_EQ(table.GetGesture(index), nullptr);

    GestureTableAccess::Add(table, new Gesture(nullptr));  // unnamed: found under ""
    EXPECT_EQ(table.GetGestureIndex(""), 3u);

    table.Clear();  // frees all four, the shadowed one too (the sanitizer build checks)
    EXPECT_EQ(table.GetGestureNum(), 0u);
    EXPECT_EQ(table.GetGestureIndex("Jump"), 0xFFFFFFFFu);
    EXPECT_EQ(table.GetGesture(size_t{0}), nullptr);
}
