/* A host written in C99 against the shared library alone: a whole lifecycle
 * through the exported C interface, with the worker thread and without it.
 * Exits with 0 when every check held. */
#define _POSIX_C_SOURCE 200112L

#include <poll.h>
#include <stdio.h>
#include <string.h>

#include "pelmora.h"

static int g_Failures = 0;

#define CHECK(c) \
    do { if (!(c)) fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #c), ++g_Failures; } while (0)

static const char* const kConfig =
    "<AppConfig><Gesture name='Up'><Segment><Qualification QualificationEnum='Greate' "
    "value1='@P_RightHand.y' value2='@P_Head.y'/></Segment></Gesture></AppConfig>";

static void SetFrame(Point3 frame[2], int handUp) {
    Point3 head = {0.0f, 1.0f, 2.0f}, hand = {0.3f, handUp ? 1.5f : 0.5f, 2.0f};
    frame[0] = head, frame[1] = hand;
}

/* Feeds the frame as a tracking loop would until player 0 has results whose
 * first record is (finished, succeeded) as asked; a worker may still deliver
 * sets of the previous frame first. */
static int FeedUntil(int worker, const Point3* frame, int finished, PelmoraResult24* results) {
    uint32_t count = 0;
    int tries;
    for (tries = 0; tries < 3000; ++tries) {
        int got = worker ? 0 : UpdateSketonDataImmediate(0, frame, 2, results, &count);
        if (worker) {
            CHECK(UpdateSketonData(0, frame, 2));
            OnIdle();
            poll(NULL, 0, 1); /* a millisecond between frames */
            got = GetPlayerGestureState(0, results, &count);
        }
        if (got && count == 1 && results[0].finished == finished && results[0].succeeded == finished) return 1;
    }
    return 0;
}

static void RunHost(int worker) {
    int32_t types[2] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND};
    GestureConfigParam param = {.IsUseSubThread = worker, .ReturnInfoType = PELMORA_RETURN_INFO_24, .PlayerNum = 2,
                                .SkeletonNum = 2, .SkeletonTypeArray = types, .VelocityFrameNum = 2,
                                .IsGetVelocityData = 1};
    PelmoraResult24 results[1];
    Point3 frame[2], velocity[2];
    uint32_t count = 0, up;

    InitPelmora(&param);
    CHECK(LoadConfigData(kConfig));
    CHECK(StartGestureWork());

    CHECK(GetGestureNum(1) == 1);
    up = GetGestureIndex(0, "Up");
    CHECK(up == 0);
    CHECK(strcmp(GetGestureName(0, up), "Up") == 0);
    CHECK(GetGestureIndex(0, "Down") == PELMORA_NO_GESTURE);
    CHECK(Stricmp("up", GetGestureName(1, 0)) == 0);

    if (worker) {
        SetPlayer(0, 1);
        SetPlayerGestureFromName(0, "Up", 1);
    } else {
        SetPlayerImmediate(0, 1);
        SetPlayerGestureImmediateFromName(0, "Up", 1);
    }
    SetFrame(frame, 0);
    CHECK(FeedUntil(worker, frame, 0, results));
    CHECK(results[0].gestureIndex == (int32_t)up);
    CHECK(results[0].segmentIndex == 0);
    SetFrame(frame, 1);
    CHECK(FeedUntil(worker, frame, 1, results));
    CHECK(GetPlayerVelocityData(0, velocity, 2));
    CHECK(!GetPlayerVelocityData(0, velocity, 3));
    CHECK(!GetPlayerGestureState(1, results, &count)); /* player 1 is not tracked */

    if (worker) {
        ResetPlayerGestureFromName(0, "Up");
        SetPlayerGesture(0, up, 0);
        CHECK(SubThreadFPS() > 0);
    } else {
        CHECK(!GetPlayerGestureState(0, results, &count)); /* one read per result set */
        ResetPlayerGestureImmediate(0, up);
        SetPlayerGestureImmediate(0, up, 0);
        CHECK(UpdateSketonDataImmediate(0, frame, 2, results, &count));
        CHECK(count == 0); /* nothing enabled, nothing reported */
        CHECK(SubThreadFPS() == 0);
    }
    ClosePelmora();
    CHECK(GetGestureNum(0) == 0);
}

int main(void) {
    RunHost(1);
    RunHost(0);
    RunHost(1); /* the library is back in its load state after a close */
    if (g_Failures) fprintf(stderr, "%d checks failed\n", g_Failures);
    return g_Failures ? 1 : 0;
}
