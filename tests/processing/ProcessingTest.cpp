#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "support/Printed.h"
#include "engine/Pelmora.h"
#include "pelmora.h"
#include "processing/OneVariablesFunction.h"
#include "processing/ProcessingTable.h"
#include "processing/TwoVariablesFunction.h"
#include "values/FloatValue.h"
#include "values/IdentifyValues.h"
#include "values/IntValue.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using T = BaseFunction::Type;

using PelmoraTest::Printed;

namespace {

// A compiled function is named by its upper-case keyword.
const char* const kKeywords[] = {"SET", "ABS", "LENGTH", "SQRLENGTH", "NORMALIZE", "ADD", "SUB",
                                 "MUL", "DIV", "DOT", "CROSS", "DISTANCE", "SQRDISTANCE", "ANGLE"};
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kInf = std::numeric_limits<float>::infinity();
const int32_t kMax = std::numeric_limits<int32_t>::max();
const int32_t kMin = std::numeric_limits<int32_t>::min();

struct Pool : IdentifyValues {
    Pool() {
        for (const char* name : {"RI", "IA=-7", "IB=2"}) Declare(BaseValue::Int, name);
        for (const char* name : {"RF", "FA=-7.5", "FB=2.5"}) Declare(BaseValue::Float, name);
        for (const char* name : {"RV", "A=1,2,4", "B=2,4,8", "U=3,4,0"}) Declare(BaseValue::Vector3, name);
        Vector("P_Head")->Set(1.0f, 0.0f, 0.0f);
    }
    void Declare(BaseValue::Type type, const std::string& text) {
        const size_t equals = text.find('=');
        CreateValue(type, text.substr(0, equals).c_str(), equals == std::string::npos ? "" : text.c_str() + equals + 1);
    }
    BaseValue* Part(const char* text) {
        BaseValue::SubType sub;
        return GetValueFromString(text, sub, false)->GetSubValue(sub);
    }
    int32_t Int(const char* text) { return *Part(text)->GetValue().i; }
    float Float(const char* text) { return *Part(text)->GetValue().f; }
    Vector3Value* Vector(const char* name) { return static_cast<Vector3Value*>(GetValue(name)); }

    // "result = type(a [, b])" with texts as in a document; null when refused.
    BaseFunction* Make(T type, const char* result, const char* a, const char* b = nullptr) {
        BaseValue::SubType subR, subA, subB;
        BaseValue* r = GetValueFromString(result, subR, true);
        BaseValue* valueA = GetValueFromString(a, subA, false);
        if (!b) {
            auto f = std::make_unique<OneVariablesFunction>(kKeywords[type]);
            return f->SetFunction(type, r, subR, valueA, subA) ? f.release() : nullptr;
        }
        BaseValue* valueB = GetValueFromString(b, subB, false);
        auto f = std::make_unique<TwoVariablesFunction>(kKeywords[type]);
        return f->SetFunction(type, r, subR, valueA, subA, valueB, subB) ? f.release() : nullptr;
    }
    bool Apply(T type, const char* result, const char* a, const char* b = nullptr) {
        std::unique_ptr<BaseFunction> f(Make(type, result, a, b));
        if (f) f->Run();
        return f != nullptr;
    }
};

// The registered combinations, by function and by value type after component selection.
bool Registered(int type, BaseValue::Type r, BaseValue::Type a, BaseValue::Type b, bool twoOperands) {
    const BaseValue::Type I = BaseValue::Int, F = BaseValue::Float, V = BaseValue::Vector3;
    switch (type) {
        case T::SET: case T::ABS: return !twoOperands && r != V && a != V;
        case T::LENGTH: case T::SQRLENGTH: return !twoOperands && r == F && a == V;
        case T::NORMALIZE: return !twoOperands && r == V && a == V;
        case T::ADD: case T::SUB: case T::MUL: case T::DIV:
            return twoOperands && (r != V ? a != V && b != V : (a == V || b == V) && a != I && b != I);
        case T::CROSS: return twoOperands && r == V && a == V && b == V;
        default: return twoOperands && r == F && a == V && b == V;  // DOT, DISTANCE, SQRDISTANCE, ANGLE
    }
}

// Logs its runs ("*" when printing) and its destruction; may switch tracing on.
struct Probe : BaseFunction {
    Probe(const char* name, std::string& log, bool switchOn = false)
        : BaseFunction(name), m_Log(log), m_Switch(switchOn) {}
    ~Probe() override { m_Log += "~" + m_Name + " "; }
    void Run() override { Note(""); }
    void RunAndPrint() override { Note("*"); }
    void Note(const char* mark) {
        m_Log += m_Name + mark + " ";
        if (m_Switch) SetDebugInfo(true);
    }
    std::string& m_Log;
    bool m_Switch;
};

}  // namespace

TEST(Function, RegisteredCombinations) {
    Pool pool;
    const BaseValue::Type types[] = {BaseValue::Int, BaseValue::Float, BaseValue::Vector3};
    BaseValue* values[] = {pool.GetValue("RI"), pool.GetValue("RF"), pool.GetValue("RV")};
    const BaseValue::SubType whole = BaseValue::SubWhole;
    int accepted = 0;
    for (int type = T::SET; type <= T::ANGLE; ++type)
        for (int r = 0; r < 3; ++r)
            for (int a = 0; a < 3; ++a) {
                OneVariablesFunction one;
                const bool oneOk = one.SetFunction(T(type), values[r], whole, values[a], whole);
                EXPECT_EQ(oneOk, Registered(type, types[r], types[a], BaseValue::Int, false)) << type << r << a;
                accepted += oneOk;
                for (int b = 0; b < 3; ++b) {
                    TwoVariablesFunction two;
                    const bool twoOk = two.SetFunction(T(type), values[r], whole, values[a], whole, values[b], whole);
                    EXPECT_EQ(twoOk, Registered(type, types[r], types[a], types[b], true)) << type << r << a << b;
                    accepted += twoOk;
                }
            }
    EXPECT_EQ(accepted, 11 + 49);

    // A component counts as a float, as result and as operand.
    EXPECT_FALSE(pool.Apply(T::LENGTH, "@RF", "@U.x"));
    EXPECT_TRUE(pool.Apply(T::ADD, "@RV.z", "@A.z", "@IB"));
    EXPECT_EQ(pool.Vector("RV")->Z(), 6.0f);

    // A refused SetFunction leaves the earlier routine and values in place.
    OneVariablesFunction set("SET");
    ASSERT_TRUE(set.SetFunction(T::SET, pool.GetValue("RI"), whole, pool.GetValue("FB"), whole));
    EXPECT_FALSE(set.SetFunction(T::SET, pool.GetValue("RI"), whole, pool.GetValue("A"), whole));
    EXPECT_FALSE(set.SetFunction(T::ADD, pool.GetValue("RI"), whole, pool.GetValue("IA"), whole));
    set.Run();
    EXPECT_EQ(pool.Int("@RI"), 2);
}

TEST(Function, EveryRoutineComputes) {
    Pool pool;
    // Integer arithmetic only between two ints (even into a float); any float
    // operand makes it float arithmetic, an int result truncating toward zero.
    const char* const firsts[] = {"@IA", "@IA", "@FA", "@FA"};   // -7, -7, -7.5, -7.5
    const char* const seconds[] = {"@IB", "@FB", "@IB", "@FB"};  // 2, 2.5, 2, 2.5
    // Vectors: 2 op A, A op 2, A op B with A = (1,2,4), B = (2,4,8).
    const struct { T type; int32_t ints[4]; float floats[4]; float vectors[3][3]; } rows[] = {
        {T::ADD, {-5, -4, -5, -5}, {-5, -4.5f, -5.5f, -5}, {{3, 4, 6}, {3, 4, 6}, {3, 6, 12}}},
        {T::SUB, {-9, -9, -9, -10}, {-9, -9.5f, -9.5f, -10}, {{1, 0, -2}, {-1, 0, 2}, {-1, -2, -4}}},
        {T::MUL, {-14, -17, -15, -18}, {-14, -17.5f, -15, -18.75f}, {{2, 4, 8}, {2, 4, 8}, {2, 8, 32}}},
        {T::DIV, {-3, -2, -3, -3}, {-3, -2.8f, -3.75f, -3}, {{2, 1, 0.5f}, {0.5f, 1, 2}, {0.5f, 0.5f, 0.5f}}},
    };
    auto expectVector = [&](const float (&expected)[3], int what) {
        const Vector3Value* v = pool.Vector("RV");
        EXPECT_TRUE(v->X() == expected[0] && v->Y() == expected[1] && v->Z() == expected[2])
            << what << ": " << v->X() << "," << v->Y() << "," << v->Z();
    };
    const char* const vectorOperands[3][2] = {{"2.0", "@A"}, {"@A", "2.0"}, {"@A", "@B"}};
    for (const auto& row : rows) {
        for (int i = 0; i < 4; ++i) {
            ASSERT_TRUE(pool.Apply(row.type, "@RI", firsts[i], seconds[i]));
            EXPECT_EQ(pool.Int("@RI"), row.ints[i]) << row.type << " int " << i;
            ASSERT_TRUE(pool.Apply(row.type, "@RF", firsts[i], seconds[i]));
            EXPECT_EQ(pool.Float("@RF"), row.floats[i]) << row.type << " float " << i;
        }
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(pool.Apply(row.type, "@RV", vectorOperands[i][0], vectorOperands[i][1]));
            expectVector(row.vectors[i], row.type * 10 + i);
        }
    }

    const struct { T type; const char* result; const char* a; const char* b; float expected; } scalars[] = {
        {T::SET, "@RI", "@IA", nullptr, -7}, {T::SET, "@RF", "@IA", nullptr, -7},
        {T::SET, "@RI", "@FA", nullptr, -7}, {T::SET, "@RF", "@FA", nullptr, -7.5f},
        {T::ABS, "@RI", "@IA", nullptr, 7},  {T::ABS, "@RF", "@IA", nullptr, 7},
        {T::ABS, "@RI", "@FA", nullptr, 7},  {T::ABS, "@RF", "@FA", nullptr, 7.5f},
        {T::LENGTH, "@RF", "@U", nullptr, 5}, {T::SQRLENGTH, "@RF", "@U", nullptr, 25},
        {T::DOT, "@RF", "@A", "@B", 42},      {T::DISTANCE, "@RF", "@U", "0,0,0", 5},
        {T::SQRDISTANCE, "@RF", "@U", "0,0,0", 25},
    };
    for (const auto& row : scalars) {
        ASSERT_TRUE(pool.Apply(row.type, row.result, row.a, row.b)) << row.type << row.result << row.a;
        const float got = row.result[2] == 'I' ? static_cast<float>(pool.Int(row.result)) : pool.Float(row.result);
        EXPECT_EQ(got, row.expected) << row.type << row.result << row.a;
    }
    ASSERT_TRUE(pool.Apply(T::NORMALIZE, "@RV", "@U"));
    expectVector({0.6f, 0.8f, 0}, T::NORMALIZE);
    ASSERT_TRUE(pool.Apply(T::CROSS, "@RV", "1,0,0", "0,1,0"));
    expectVector({0, 0, 1}, T::CROSS);
    ASSERT_TRUE(pool.Apply(T::ANGLE, "@RF", "1,0,0", "0,1,0"));
    EXPECT_NEAR(pool.Float("@RF"), -90.0f, 1e-4f);
}

// Int results are defined for every input: NaN gives 0, floats beyond the int
// range saturate, int arithmetic wraps instead of overflowing; an int divided
// by an int zero gives 0 and says so once per process, float division by zero
// follows IEEE silently.
TEST(Function, IntResultsAreAlwaysDefined) {
    Pool pool;
    EXPECT_EQ(Printed([&] { pool.Apply(T::DIV, "@RF", "5.0", "0"); }), "");
    EXPECT_EQ(pool.Float("@RF"), kInf);
    std::unique_ptr<BaseFunction> intoInt(pool.Make(T::DIV, "@RI", "5", "0"));
    std::unique_ptr<BaseFunction> intoFloat(pool.Make(T::DIV, "@RF", "@IA", "0"));
    static_cast<IntValue*>(pool.GetValue("RI"))->Set(9);
    EXPECT_EQ(Printed([&] { intoInt->Run(); }), "DIV Error! Integer division by zero, the result is 0.\n");
    EXPECT_EQ(pool.Int("@RI"), 0);
    EXPECT_EQ(Printed([&] { intoInt->Run(); intoFloat->Run(); }), "");
    EXPECT_EQ(pool.Float("@RF"), 0.0f);

    const struct { T type; float operand; int32_t expected; } conversions[] = {
        {T::SET, 2.7f, 2},    {T::SET, -2.7f, -2},  {T::SET, kNaN, 0},    {T::SET, kInf, kMax},
        {T::SET, -kInf, kMin}, {T::SET, 3e9f, kMax}, {T::SET, -3e9f, kMin}, {T::SET, 2147483520.0f, 2147483520},
        {T::SET, -2147483648.0f, kMin}, {T::ABS, -2.7f, 2}, {T::ABS, -kInf, kMax}, {T::ABS, kNaN, 0},
    };
    for (const auto& row : conversions) {
        static_cast<FloatValue*>(pool.GetValue("FA"))->Set(row.operand);
        ASSERT_TRUE(pool.Apply(row.type, "@RI", "@FA"));
        EXPECT_EQ(pool.Int("@RI"), row.expected) << row.type << " " << row.operand;
    }
    const struct { T type; const char* a; const char* b; int32_t expected; } arithmetic[] = {
        {T::MUL, "1.0e30", "2", kMax}, {T::SUB, "-3.0e9", "1", kMin},        {T::ADD, "@FA", "1", 0},  // FA is NaN
        {T::DIV, "0.0", "0", 0},       {T::ADD, "2147483647", "1", kMin},   {T::SUB, "-2147483648", "1", kMax},
        {T::MUL, "65536", "65536", 0}, {T::DIV, "-2147483648", "-1", kMin}, {T::ABS, "-2147483648", nullptr, kMax},
    };
    for (const auto& row : arithmetic) {
        ASSERT_TRUE(pool.Apply(row.type, "@RI", row.a, row.b));
        EXPECT_EQ(pool.Int("@RI"), row.expected) << row.type << " " << row.a;
    }
}

TEST(Function, RunAndPrintTrace) {
    Pool pool;
    static_cast<FloatValue*>(pool.GetValue("FA"))->Set(-2.7f);
    std::unique_ptr<BaseFunction> set(pool.Make(T::SET, "@RI", "@FA"));
    std::unique_ptr<BaseFunction> add(pool.Make(T::ADD, "@P_Head.y", "@P_Head.x", "0.5"));
    ASSERT_TRUE(set && add);

    // Without the engine the work is done and only the line is replaced.
    const std::string noEngine = "Pelmora::Instance do not been created before calling get function.\n";
    EXPECT_EQ(Printed([&] { set->RunAndPrint(); }),
              noEngine + "PelmoraLib::OneVariablesFunction::RunAndPrint line: 142 Error: Pelmora::Instance is NULL\n");
    EXPECT_EQ(pool.Int("@RI"), -2);
    EXPECT_EQ(Printed([&] { add->RunAndPrint(); }),
              noEngine + "PelmoraLib::TwoVariablesFunction::RunAndPrint line: 309 Error: Pelmora::Instance is NULL\n");
    EXPECT_EQ(pool.Vector("P_Head")->Y(), 1.5f);

    ProcessingTable table;
    Processing* block = new Processing(true);
    block->AddFunction(set.release());
    block->AddFunction(add.release());
    block->AddFunction(pool.Make(T::LENGTH, "@RF", "@U"));
    block->AddFunction(pool.Make(T::ADD, "@RV", "@A", "1.5"));
    table.AddProcessing(block);
    table.AddProcessing(new Processing(false));

    SetDebugInfo(false);
    Pelmora::Create();
    EXPECT_EQ(Printed([&] { table.FrameUpdate(); }), "");
    SetDebugInfo(true);
    EXPECT_EQ(Printed([&] { table.FrameUpdate(); }),
              "RI(-2) = SET( FA(-2.700000) )\n"
              "P_Head.y(1.500000) = P_Head.x(1.000000) ADD 0.5(0.500000)\n"
              "RF(5.000000) = LENGTH( U(3.000000,4.000000,0.000000) )\n"
              "RV(2.500000,3.500000,5.500000) = A(1.000000,2.000000,4.000000) ADD 1.5(1.500000)\n");
    SetDebugInfo(false);
    Pelmora::Close();
}

TEST(ProcessingTable, RunsListsInOrderAndOwnsBlocks) {
    std::string log;
    ProcessingTable table;
    SetDebugInfo(true);
    EXPECT_EQ(Printed([&] { table.UpdateAll(); table.FrameUpdate(); }), "");  // empty: nothing at all
    SetDebugInfo(false);

    Processing* perFrame = new Processing(true);
    perFrame->AddFunction(new Probe("a1", log, true));  // switches tracing on while running
    perFrame->AddFunction(new Probe("a2", log));
    Processing* setUp = new Processing(false);
    setUp->AddFunction(new Probe("b", log));
    Processing* last = new Processing(true);
    last->AddFunction(new Probe("c", log));
    for (Processing* block : {perFrame, setUp, last}) table.AddProcessing(block);
    EXPECT_EQ(table.GetProcessingNum(), 3u);
    EXPECT_EQ(table.GetFrameProcessingNum(), 2u);

    // The switch is read once per call: the call that turned it on finishes plainly.
    table.FrameUpdate();
    EXPECT_EQ(log, "a1 a2 c ");
    log.clear();
    table.UpdateAll();
    EXPECT_EQ(log, "a1* a2* b* c* ");
    SetDebugInfo(false);

    log.clear();
    table.Clear();
    EXPECT_EQ(log, "~a1 ~a2 ~b ~c ");
    EXPECT_EQ(table.GetProcessingNum(), 0u);
    EXPECT_EQ(table.GetFrameProcessingNum(), 0u);
}
