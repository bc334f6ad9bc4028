// The laid-out program against the gesture objects it is built from: both
// must give the same result for every gesture, segment and set of values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "gesture/GestureProgram.h"
#include "gesture/Gesture.h"
#include "values/FloatValue.h"
#include "values/IdentifyValues.h"
#include "values/IntValue.h"
#include "values/RefFloatValue.h"
#include "values/Vector3Value.h"

using namespace PelmoraLib;
using Q = Qualification;

namespace {

class Gestures {
public:
    ~Gestures() {
        for (Gesture* gesture : list) delete gesture;
    }
    // Adds a gesture of one segment holding `left` Greate `right`; false when
    // that does not compile.
    bool AddGreate(BaseValue* left, BaseValue* right) {
        std::unique_ptr<Q> q(new Q);
        if (!q->SetQualification(Q::Greate, left, BaseValue::SubWhole, right, BaseValue::SubWhole)) return false;
        Segment* segment = new Segment;
        segment->AddQualification(q.release());
        Gesture* gesture = new Gesture;
        gesture->AddSegment(segment);
        list.push_back(gesture);
        return true;
    }
    std::vector<Gesture*> list;
};

// Values of every kind a qualification can compare, including a float
// reached through a reference (which the program leaves to its object).
struct Values {
    IdentifyValues pool;
    float referred = 0.0f;
    RefFloatValue reference{referred};

    Values() {
        for (const char* name : {"I0", "I1"}) pool.CreateValue(BaseValue::Int, name, "0");
        for (const char* name : {"F0", "F1"}) pool.CreateValue(BaseValue::Float, name, "0");
    }

    // Extremes included: NaN, infinities, ints that a float cannot hold.
    void Shuffle(std::mt19937& random) {
        const float floats[] = {0.0f, -0.0f, 1.0f, -2.5f, 3.0f, 16777216.0f,
                                std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()};
        const int32_t ints[] = {0, 1, -1, 3, 16777217, std::numeric_limits<int32_t>::min()};
        auto pickFloat = [&] { return floats[random() % (sizeof floats / sizeof floats[0])]; };
        auto pickInt = [&] { return ints[random() % (sizeof ints / sizeof ints[0])]; };
        static_cast<IntValue*>(pool.GetValue("I0"))->Set(pickInt());
        static_cast<IntValue*>(pool.GetValue("I1"))->Set(pickInt());
        static_cast<FloatValue*>(pool.GetValue("F0"))->Set(pickFloat());
        static_cast<FloatValue*>(pool.GetValue("F1"))->Set(pickFloat());
        static_cast<Vector3Value*>(pool.GetValue("P_Head"))->Set(pickFloat(), pickFloat(), pickFloat());
        referred = pickFloat();
    }

    BaseValue* Operand(std::mt19937& random, BaseValue::SubType& sub) {
        static const char* const texts[] = {"@I0", "@I1", "@F0", "@F1", "@P_Head", "@P_Head.x", "@P_Head.y",
                                            "3",   "-1",  "2.5", "0.0", "16777217"};
        const size_t pick = random() % (sizeof texts / sizeof texts[0] + 1);
        if (pick == sizeof texts / sizeof texts[0]) {
            sub = BaseValue::SubWhole;
            return &reference;
        }
        return pool.GetValueFromString(texts[pick], sub, false);
    }

    // A qualification of a random kind, operands and flags that compiles.
    Q* MakeQualification(std::mt19937& random) {
        for (;;) {
            BaseValue::SubType subA, subB;
            BaseValue* a = Operand(random, subA);
            BaseValue* b = Operand(random, subB);
            std::unique_ptr<Q> q(new Q);
            if (!q->SetQualification(static_cast<Q::QualificationEnum>(random() % Q::Count), a, subA, b, subB)) continue;
            q->SetResetOnFailed(random() % 3 == 0);
            q->SetFinishOnSucceed(random() % 5 == 0);
            return q.release();
        }
    }
};

}  // namespace

TEST(GestureProgram, AgreesWithTheGestureObjects) {
    std::mt19937 random(20261122);
    Values values;
    Gestures gestures;
    for (int g = 0; g < 200; ++g) {
        Gesture* gesture = new Gesture(("G" + std::to_string(g)).c_str());
        const int segments = static_cast<int>(random() % 4);  // a gesture without segments too
        for (int s = 0; s < segments; ++s) {
            Segment* segment = new Segment;
            const int qualifications = static_cast<int>(random() % 4);
            for (int q = 0; q < qualifications; ++q) segment->AddQualification(values.MakeQualification(random));
            gesture->AddSegment(segment);
        }
        gestures.list.push_back(gesture);
    }
    // A segment of more steps than the layout counts is checked through its
    // objects: 299 that hold, then one that decides.
    Gesture* longest = new Gesture("Long");
    Segment* segment = new Segment;
    for (int q = 0; q < 299; ++q) {
        BaseValue::SubType sub;
        BaseValue* one = values.pool.GetValueFromString("1", sub, false);
        Q* holds = new Q;
        ASSERT_TRUE(holds->SetQualification(Q::Equal, one, sub, one, sub));
        segment->AddQualification(holds);
    }
    segment->AddQualification(values.MakeQualification(random));
    longest->AddSegment(segment);
    gestures.list.push_back(longest);

    // The literals ("3", "2.5", ...) are the pool's constants: the program
    // reads its copies of them.
    GestureProgram program;
    program.Build(gestures.list, &values.pool);
    const GestureProgram::View view = program.GetView();
    ASSERT_EQ(view.GestureCount(), gestures.list.size());
    for (int round = 0; round < 300; ++round) {
        values.Shuffle(random);
        for (size_t g = 0; g < gestures.list.size(); ++g) {
            Gesture& gesture = *gestures.list[g];
            ASSERT_EQ(view.SegmentCount(g), gesture.GetSegmentSize());
            for (size_t s = 0; s < gesture.GetSegmentSize(); ++s)
                ASSERT_EQ(view.Check(g, s), gesture.DoCheck(s)) << "gesture " << g << ", segment " << s << ", round " << round;
        }
    }
}

// Operands are numbered in sixteen bits; gestures whose operands fall beyond
// are checked through their objects and still agree.
TEST(GestureProgram, MoreOperandsThanPlacesFallBackToTheObjects) {
    const int kGestures = 33000;  // two distinct constants each: more than 65536 operands
    std::vector<std::unique_ptr<FloatValue>> constants;
    Gestures gestures;
    for (int g = 0; g < kGestures; ++g) {
        constants.emplace_back(new FloatValue(static_cast<float>(g)));
        constants.emplace_back(new FloatValue(static_cast<float>(g % 2)));
        ASSERT_TRUE(gestures.AddGreate(constants[constants.size() - 2].get(), constants.back().get()));
    }
    GestureProgram program;
    program.Build(gestures.list, nullptr);
    const GestureProgram::View view = program.GetView();
    for (int round = 0; round < 2; ++round) {
        for (int g = 0; g < kGestures; ++g) {
            const Q::Result expected = static_cast<float>(g) + round > static_cast<float>(g % 2) ? Q::Succeed : Q::Failed;
            ASSERT_EQ(view.Check(static_cast<size_t>(g), 0), expected) << "gesture " << g << ", round " << round;
        }
        // Checks read the live values.
        for (int g = 0; g < kGestures; ++g) constants[2 * static_cast<size_t>(g)]->Set(static_cast<float>(g) + 1.0f);
    }
}

// Literal constants are copied when the program is laid out; only the pool's
// own constants are, and a new layout copies them afresh.
TEST(GestureProgram, CopiesThePoolsLiteralConstants) {
    IdentifyValues pool;
    FloatValue standalone(0.5f);
    BaseValue* literal = pool.GetConstValue("0.5");
    BaseValue* zero = pool.GetConstValue("0");
    Gestures gestures;
    ASSERT_TRUE(gestures.AddGreate(literal, zero));
    ASSERT_TRUE(gestures.AddGreate(&standalone, zero));
    GestureProgram program;
    program.Build(gestures.list, &pool);
    // Writing a constant is outside the contract; it shows which reads are copies.
    static_cast<FloatValue*>(literal)->Set(-1.0f);
    standalone.Set(-1.0f);
    EXPECT_EQ(program.GetView().Check(0, 0), Q::Succeed);
    EXPECT_EQ(program.GetView().Check(1, 0), Q::Failed);
    program.Build(gestures.list, &pool);
    EXPECT_EQ(program.GetView().Check(0, 0), Q::Failed);
}
