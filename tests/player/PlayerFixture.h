// PlayerFixture - an engine and player manager built from a start-up record
// alone, gestures assembled in code and a deterministic clock, so that player
// tests control every frame, millisecond and check result. The skeleton has
// two slots: the head (type 1) and the right hand (type 15).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "gesture/GestureTable.h"
#include "player/Player.h"
#include "support/GestureTableAccess.h"
#include "support/Param.h"
#include "support/TestClock.h"
#include "values/IdentifyValues.h"

namespace PelmoraTest {

using namespace PelmoraLib;

// One segment: "P_Head.x <kind> <literal>", optionally resetting on failure
// or finishing on success.
struct SegmentRule {
    Qualification::QualificationEnum kind;
    const char* literal;
    bool resetOnFailed = false;
    bool finishOnSucceed = false;
};

class PlayerFixture : public testing::Test {
protected:
    void Start(int returnType, int frameNum = 2, int mulType = 0, int playerNum = 1) {
        GestureConfigParam param = Param(playerNum, m_Types, 2);
        param.ReturnInfoType = returnType;
        param.VelocityFrameNum = frameNum;
        param.VelocityMulType = mulType;
        param.IsGetVelocityData = 1;
        Pelmora::Create()->Init(param);
        PlayerManager::Create()->Init(param);
    }

    void Stop() {
        PlayerManager::Release();
        Pelmora::Close();
    }

    void TearDown() override {
        if (PlayerManager::Exists()) Stop();
    }

    Player& GetPlayer(int index = 0) { return *PlayerManager::Get()->GetPlayer(index); }
    IdentifyValues& Pool() { return *Pelmora::Get()->GetIdentifyValue(0); }
    float* Value(const char* name) { return Pool().GetValue(name)->GetValue().f; }
    int IntValue(const char* name) { return *Pool().GetValue(name)->GetValue().i; }

    // Adds a gesture to player 0's table, before InitGestureData.
    void AddGesture(const char* name, const std::vector<SegmentRule>& segments) {
        Gesture* gesture = new Gesture(name);
        for (const SegmentRule& rule : segments) {
            Qualification* qualification = new Qualification;
            EXPECT_TRUE(qualification->SetQualification(rule.kind, Pool().GetValue("P_Head"), BaseValue::SubX,
                                                        Pool().GetConstValue(rule.literal), BaseValue::SubWhole));
            qualification->SetResetOnFailed(rule.resetOnFailed);
            qualification->SetFinishOnSucceed(rule.finishOnSucceed);
            Segment* segment = new Segment;
            segment->AddQualification(qualification);
            gesture->AddSegment(segment);
        }
        GestureTableAccess::Add(*Pelmora::Get()->GetGestureTable(0), gesture);
    }

    // Tracks player 0, feeds warm-up frames up to the first checked one, then
    // enables `active` (their times start at the clock's now).
    void Track(std::initializer_list<unsigned> active) {
        PlayerManager::Get()->InitGestureData();
        Player& player = GetPlayer();
        player.SetIsUpdate(true);
        for (int frame = 1; frame < Player::GetVelocityFrameNum(); ++frame) EXPECT_FALSE(Feed(0.0f));
        EXPECT_FALSE(player.CheckHasNewData());
        for (unsigned index : active) player.SetGesture(index, true);
    }

    // Advances the clock by `ms` and processes a frame with the head at (x, y, z).
    bool Feed(float x, uint32_t ms = 10, float y = 0.0f, float z = 1.0f) {
        m_Clock.Advance(ms);
        SetFrame(x, y, z);
        return GetPlayer().UpdatePlayerInfoImmediate(m_Frame, 2);
    }

    void SetFrame(float x, float y = 0.0f, float z = 1.0f) {
        m_Frame[0] = Point3{x, y, z};
        m_Frame[1] = Point3{0.0f, 0.0f, 1.0f};
    }

    // Player 0's newest result slot, as 32-bit words.
    std::vector<uint32_t> Records() {
        Player& player = GetPlayer();
        const ReturnGestureInfoBuffer& slot = player.BeginReadGestureInfoBuffer();
        std::vector<uint32_t> words(slot.m_Count * player.GetReturnInfoSize() / 4);
        if (!words.empty()) memcpy(words.data(), slot.m_Data.data(), words.size() * 4);
        player.EndReadGestureInfoBuffer();
        return words;
    }

    int m_Types[2] = {1, 15};
    Point3 m_Frame[2] = {};
    TestClock m_Clock{1000};
};

}  // namespace PelmoraTest
