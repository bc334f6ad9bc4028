/* Smallest complete use of the installed C interface: one player raises the
 * right hand above the head and the one-segment gesture must finish. Exits 0
 * and prints "Pelmora64 <version> ok" only when it did. */
#include <stdio.h>

#include <pelmora.h>

static const char* kConfig =
    "<AppConfig><Gesture name='HandUp'><Segment>"
    "<Qualification QualificationEnum='Greate' value1='@P_RightHand.y' value2='@P_Head.y'/>"
    "</Segment></Gesture></AppConfig>";

int main(void) {
    int major = -1, minor = -1, patch = -1;
    PelmoraVersion(&major, &minor, &patch);

    int32_t joints[2] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND};
    GestureConfigParam param = {0};
    param.ReturnInfoType = PELMORA_RETURN_INFO_8;
    param.PlayerNum = 1;
    param.SkeletonNum = 2;
    param.SkeletonTypeArray = joints;
    InitPelmora(&param);
    if (!LoadConfigData(kConfig) || !StartGestureWork()) return 1;
    SetPlayerImmediate(0, true);
    SetPlayerGestureImmediateFromName(0, "HandUp", true);

    int finishes = 0;
    for (int frame = 0; frame < 4; ++frame) {
        float hand = frame < 3 ? 0.0f : 2.0f; /* raised in the last frame only */
        Point3 skeleton[2] = {{0.0f, 1.0f, 2.0f}, {0.3f, hand, 2.0f}};
        PelmoraResult8 results[1];
        uint32_t count = 0;
        if (UpdateSketonDataImmediate(0, skeleton, 2, results, &count) && count == 1 && results[0].finished)
            finishes += frame == 3 ? 1 : 100;
    }
    ClosePelmora();
    if (finishes != 1) return 1;
    printf("Pelmora64 %d.%d.%d ok\n", major, minor, patch);
    return 0;
}
