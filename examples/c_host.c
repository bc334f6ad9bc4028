/* c_host - a minimal host of the C interface in immediate mode: the library
 * evaluates each frame on this thread and returns the results in the same
 * call. A synthetic player raises the right hand twice; the configuration
 * derives the hand's height over the head and defines "RaiseRightHand": the
 * hand below the head, then above it within a second. */
#include <stdio.h>

#include "pelmora.h"

static const char* kConfig =
    "<AppConfig>"
    "  <IdentfyValues><Value type='float' name='HandHeight'>0</Value></IdentfyValues>"
    "  <Processing update='1'>"
    "    <Function name='SUB' return='@HandHeight' value1='@P_RightHand.y' value2='@P_Head.y'/>"
    "  </Processing>"
    "  <Gesture name='RaiseRightHand'>"
    "    <Segment><Qualification QualificationEnum='Less' value1='@HandHeight' value2='0.0'/></Segment>"
    "    <Segment>"
    "      <Qualification QualificationEnum='Less' value1='@SegmentTime' value2='1000' IsResetOnFailed='1'/>"
    "      <Qualification QualificationEnum='Greate' value1='@HandHeight' value2='0.1'/>"
    "    </Segment>"
    "  </Gesture>"
    "</AppConfig>";

/* Frames 33 ms apart on the library's clock, whatever the real pace. */
static uint32_t g_NowMs = 1000;
static uint32_t FrameClock(void* user) { (void)user; return g_NowMs; }

int main(void) {
    int32_t joints[3] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_TORSO, PELMORA_JOINT_RIGHT_HAND};
    GestureConfigParam param = {0};
    param.IsUseSubThread = 0;
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = 1;
    param.SkeletonNum = 3;
    param.SkeletonTypeArray = joints;
    param.VelocityFrameNum = 2;

    SetTimeSource(FrameClock, NULL);
    InitPelmora(&param);
    if (!LoadConfigData(kConfig) || !StartGestureWork()) {
        fprintf(stderr, "configuration failed: %s\n", GetLastConfigError());
        ClosePelmora();
        return 1;
    }
    SetPlayerImmediate(0, true);
    SetPlayerGestureImmediateFromName(0, "RaiseRightHand", true);

    PelmoraResult24 results[1]; /* GetGestureNum(0) records */
    int finishes = 0;
    for (int frame = 0; frame < 90; ++frame) {
        g_NowMs += 33;
        /* Raised during frames 20-29 and 50-59. */
        float hand = ((frame >= 20 && frame < 30) || (frame >= 50 && frame < 60)) ? 1.9f : 1.2f;
        Point3 skeleton[3] = {{0.0f, 1.6f, 2.5f}, {0.0f, 1.2f, 2.5f}, {0.3f, hand, 2.4f}};
        uint32_t count = 0;
        if (!UpdateSketonDataImmediate(0, skeleton, 3, results, &count)) continue;
        for (uint32_t k = 0; k < count; ++k) {
            if (!results[k].finished) continue;
            ++finishes;
            printf("frame %d: %s finished (gesture %d ms, last segment %d ms)\n", frame,
                   GetGestureName(0, (uint32_t)results[k].gestureIndex), results[k].gestureTimeMs,
                   results[k].segmentTimeMs);
        }
    }
    ClosePelmora();
    SetTimeSource(NULL, NULL);
    printf("%d finishes\n", finishes);
    return finishes == 2 ? 0 : 1;
}
