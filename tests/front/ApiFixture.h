// ApiFixture - a host of the C interface for tests: a two-joint skeleton
// (head, right hand), gestures written as configuration text, frames with the
// hand above or below the head, and for the worker's tests a clock that
// counts the worker's readings.
#pragma once

#include <gtest/gtest.h>

#include "pelmora.h"
#include "support/Eventually.h"
#include "support/Param.h"
#include "support/Printed.h"
#include "support/TestClock.h"

namespace PelmoraTest {

// "Up": the right hand above the head. "UpDown": up, then down again.
inline const char* kGestures =
    "<AppConfig>"
    "<Gesture name='Up'><Segment><Qualification QualificationEnum='Greate' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment></Gesture>"
    "<Gesture name='UpDown'><Segment><Qualification QualificationEnum='Greate' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment><Segment><Qualification QualificationEnum='Less' value1='@P_RightHand.y' "
    "value2='@P_Head.y'/></Segment></Gesture>"
    "</AppConfig>";

class ApiTest : public testing::Test {
protected:
    void TearDown() override { Printed([] { ClosePelmora(); }); }

    void Init(bool worker, int players = 1, int returnType = PELMORA_RETURN_INFO_16) {
        // Every player keeps its velocities for the host.
        GestureConfigParam param = Param(players, m_Types, 2);
        param.IsUseSubThread = worker;
        param.ReturnInfoType = returnType;
        param.IsGetVelocityData = 1;
        InitPelmora(&param);
    }

    // Init, load and compile, quietly.
    void Start(bool worker, int players = 1, int returnType = PELMORA_RETURN_INFO_16) {
        Printed([&] {
            Init(worker, players, returnType);
            ASSERT_TRUE(LoadConfigData(kGestures));
            ASSERT_TRUE(StartGestureWork());
        });
    }

    const Point3* Frame(bool handUp) {
        m_Frame[0] = Point3{0.0f, 1.0f, 2.0f};
        m_Frame[1] = Point3{0.3f, handUp ? 1.5f : 0.5f, 2.0f};
        return m_Frame;
    }

    int32_t m_Types[2] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND};
    Point3 m_Frame[2] = {};
    PelmoraResult16 m_Results[4] = {};
    uint32_t m_Count = 0;
};

// The clock outlives the worker: members go after TearDown has closed.
class WorkerApiTest : public ApiTest {
protected:
    TestClock m_Clock;
};

}  // namespace PelmoraTest
