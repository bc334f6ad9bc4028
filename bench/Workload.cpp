#include "bench/Workload.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace PelmoraBench {

const int32_t kJointTypes[kJointCount] = {
    PELMORA_JOINT_WAIST,      PELMORA_JOINT_TORSO,          PELMORA_JOINT_NECK,        PELMORA_JOINT_HEAD,
    PELMORA_JOINT_LEFT_SHOULDER, PELMORA_JOINT_LEFT_ELBOW,  PELMORA_JOINT_LEFT_WRIST,  PELMORA_JOINT_LEFT_HAND,
    PELMORA_JOINT_RIGHT_SHOULDER, PELMORA_JOINT_RIGHT_ELBOW, PELMORA_JOINT_RIGHT_WRIST, PELMORA_JOINT_RIGHT_HAND,
    PELMORA_JOINT_LEFT_HIP,   PELMORA_JOINT_LEFT_KNEE,      PELMORA_JOINT_LEFT_ANKLE,  PELMORA_JOINT_LEFT_FOOT,
    PELMORA_JOINT_RIGHT_HIP,  PELMORA_JOINT_RIGHT_KNEE,     PELMORA_JOINT_RIGHT_ANKLE, PELMORA_JOINT_RIGHT_FOOT,
};

namespace {

// Slots of kJointTypes used by the rules.
enum Slot { kHead = 3, kLeftShoulder = 4, kLeftHand = 7, kRightShoulder = 8, kRightElbow = 9, kRightHand = 11 };

const char* const kDocumentHead =
    "<?xml version=\"1.0\"?>\n"
    "<AppConfig>\n"
    "  <IdentfyValues>\n"
    "    <Value type=\"vector3\" name=\"HandOffset\"/>\n"
    "    <Value type=\"float\" name=\"HandHeight\">0</Value>\n"
    "    <Value type=\"float\" name=\"HandDistance\">0</Value>\n"
    "    <Value type=\"vector3\" name=\"RightArm\"/>\n"
    "    <Value type=\"vector3\" name=\"RightUpperArm\"/>\n"
    "    <Value type=\"float\" name=\"ElbowAngle\">0</Value>\n"
    "    <Value type=\"vector3\" name=\"ShoulderLine\"/>\n"
    "    <Value type=\"float\" name=\"ShoulderWidth\">0</Value>\n"
    "    <Value type=\"float\" name=\"HandForward\">0</Value>\n"
    "    <Value type=\"float\" name=\"HandReach\">0</Value>\n"
    "  </IdentfyValues>\n"
    "  <Processing update=\"1\">\n"
    "    <Function name=\"SUB\" return=\"@HandOffset\" value1=\"@P_RightHand\" value2=\"@P_Head\"/>\n"
    "    <Function name=\"SUB\" return=\"@HandHeight\" value1=\"@P_RightHand.y\" value2=\"@P_Head.y\"/>\n"
    "    <Function name=\"DISTANCE\" return=\"@HandDistance\" value1=\"@P_RightHand\" value2=\"@P_LeftHand\"/>\n"
    "    <Function name=\"SUB\" return=\"@RightArm\" value1=\"@P_RightHand\" value2=\"@P_RightElbow\"/>\n"
    "    <Function name=\"SUB\" return=\"@RightUpperArm\" value1=\"@P_RightElbow\" value2=\"@P_RightShoulder\"/>\n"
    "    <Function name=\"ANGLE\" return=\"@ElbowAngle\" value1=\"@RightArm\" value2=\"@RightUpperArm\"/>\n"
    "    <Function name=\"SUB\" return=\"@ShoulderLine\" value1=\"@P_RightShoulder\" value2=\"@P_LeftShoulder\"/>\n"
    "    <Function name=\"LENGTH\" return=\"@ShoulderWidth\" value1=\"@ShoulderLine\"/>\n"
    "    <Function name=\"DOT\" return=\"@HandForward\" value1=\"@HandOffset\" value2=\"@ShoulderLine\"/>\n"
    "    <Function name=\"DIV\" return=\"@HandReach\" value1=\"@HandDistance\" value2=\"@ShoulderWidth\"/>\n"
    "  </Processing>\n";

std::string Fixed(const char* format, double value) {
    char text[32];
    snprintf(text, sizeof text, format, value);
    return text;
}

std::string Qualification(const char* kind, const char* left, const std::string& right, const char* flags = "") {
    return std::string("      <Qualification QualificationEnum=\"") + kind + "\" value1=\"" + left + "\" value2=\"" +
           right + "\"" + flags + "/>\n";
}

const char* const kReset = " IsResetOnFailed=\"1\"";
const char* const kFinish = " IsFinishOnSucceed=\"1\"";

float Literal(const std::string& text) { return static_cast<float>(atof(text.c_str())); }

Vec3 Sub(const Vec3& a, const Vec3& b) { return Vec3{a.x - b.x, a.y - b.y, a.z - b.z}; }
float Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
float Length(const Vec3& a) { return std::sqrt(Dot(a, a)); }
float Distance(const Vec3& a, const Vec3& b) { return Length(Sub(a, b)); }
Vec3 Normalize(const Vec3& a) {
    const float length = Length(a);
    return Vec3{a.x / length, a.y / length, a.z / length};
}
// Degrees, signed by the turn about z.
float Angle(const Vec3& a, const Vec3& b) {
    const Vec3 na = Normalize(a), nb = Normalize(b);
    const float degrees = std::acos(Dot(na, nb)) / 3.1415927f * 180.0f;
    return na.x * nb.y - na.y * nb.x > 0.0f ? -degrees : degrees;
}

Vec3 Lerp(const Vec3& a, const Vec3& b, float t) {
    return Vec3{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t};
}

}  // namespace

std::vector<GestureRecipe> MakeGestures(int count) {
    std::vector<GestureRecipe> gestures;
    for (int g = 0; g < count; ++g) {
        GestureRecipe recipe;
        recipe.kind = g % 4;
        const int step = (g / 4) % 7;
        switch (recipe.kind) {
            case 0:  // raise the right hand over the head and lower it
                recipe.a = Fixed("%.3f", -0.45 + 0.04 * step);
                recipe.b = Fixed("%.3f", -0.25 + 0.03 * step);
                break;
            case 1:  // hands apart, together, apart again
                recipe.a = Fixed("%.3f", 0.45 + 0.05 * step);
                recipe.b = Fixed("%.3f", 0.20 + 0.03 * step);
                recipe.c = Fixed("%.3f", 1.00 + 0.15 * step);
                break;
            case 2:  // elbow bends while the hand comes up
                recipe.a = Fixed("%.2f", -170.0 + 8.0 * step);
                recipe.b = Fixed("%.2f", -150.0 + 10.0 * step);
                break;
            default:  // swipe right and back
                recipe.a = Fixed("%.5f", 0.00020 + 0.00008 * step);
                recipe.b = Fixed("%.5f", -0.00020 - 0.00008 * step);
                recipe.c = Fixed("%.4f", -0.02 + 0.01 * step);
                break;
        }
        gestures.push_back(recipe);
    }
    return gestures;
}

std::string MakeDocument(const std::vector<GestureRecipe>& gestures) {
    std::string xml = kDocumentHead;
    for (size_t g = 0; g < gestures.size(); ++g) {
        const GestureRecipe& recipe = gestures[g];
        xml += "  <Gesture name=\"G" + std::to_string(g) + "\">\n";
        std::string s[3];
        switch (recipe.kind) {
            case 0:
                s[0] = Qualification("Less", "@SegmentTime", "3000", kReset) + Qualification("Less", "@HandHeight", recipe.a);
                s[1] = Qualification("Less", "@SegmentTime", "1500", kReset) +
                       Qualification("Greate", "@P_RightHand.y", "@P_Head.y");
                s[2] = Qualification("Less", "@HandHeight", recipe.b) +
                       Qualification("Less", "@GestureTime", "4000", kReset);
                break;
            case 1:
                s[0] = Qualification("Greate", "@HandDistance", recipe.a) +
                       Qualification("Greate", "@ShoulderWidth", "0.2");
                s[1] = Qualification("ELess", "@SegmentTime", "2000", kReset) +
                       Qualification("Less", "@HandDistance", recipe.b);
                s[2] = Qualification("EGreate", "@HandReach", recipe.c) +
                       Qualification("NoEqual", "@HandForward", "0.0");
                break;
            case 2:
                s[0] = Qualification("Greate", "@ElbowAngle", recipe.a) +
                       Qualification("Less", "@P_RightHand.y", "@P_RightShoulder.y");
                s[1] = Qualification("Less", "@SegmentTime", "2500", kReset) +
                       Qualification("Less", "@ElbowAngle", recipe.b);
                s[2] = Qualification("Greate", "@P_RightElbow.y", "@P_RightShoulder.y") +
                       Qualification("Less", "@GestureTime", "5000", kReset);
                break;
            default:
                s[0] = Qualification("Greate", "@V_RightHand.x", recipe.a) +
                       Qualification("Greate", "@HandHeight", "-0.6");
                s[1] = Qualification("Less", "@SegmentTime", "1200", kReset) +
                       Qualification("Less", "@V_RightHand.x", recipe.b);
                s[2] = Qualification("Greate", "@HandForward", recipe.c) +
                       Qualification("EGreate", "@GestureTime", "0", kFinish);
                break;
        }
        for (const std::string& segment : s) xml += "    <Segment>\n" + segment + "    </Segment>\n";
        xml += "  </Gesture>\n";
    }
    xml += "</AppConfig>\n";
    return xml;
}

std::vector<Point3> MakeMotion(int player) {
    std::vector<Point3> frames(static_cast<size_t>(kCycleFrames) * kJointCount);
    const float bx = -1.5f + 0.6f * static_cast<float>(player);
    const float bz = 2.5f + 0.1f * static_cast<float>(player);
    const float scale = 1.0f + 0.03f * static_cast<float>(player % 3);
    for (int f = 0; f < kCycleFrames; ++f) {
        const float phase = 6.2831853f * static_cast<float>(f) / kCycleFrames;
        const float raise = 0.5f - 0.5f * std::cos(phase);
        const float clap = 0.5f - 0.5f * std::cos(2.0f * phase);
        const float sway = 0.02f * std::sin(phase);
        Vec3 j[kJointCount];
        auto at = [&](float x, float y, float z) { return Vec3{bx + sway + x * scale, y * scale, bz + z}; };
        j[0] = at(0.0f, 0.0f, 0.0f);        // waist
        j[1] = at(0.0f, 0.25f, 0.0f);       // torso
        j[2] = at(0.0f, 0.55f, 0.0f);       // neck
        j[3] = at(0.0f, 0.72f, 0.02f);      // head
        j[4] = at(-0.2f, 0.5f, 0.0f);       // left shoulder
        j[8] = at(0.2f, 0.5f, 0.0f);        // right shoulder
        j[11] = at(0.3f + 0.15f * std::sin(phase), -0.1f + 1.0f * raise, -0.2f * raise);
        j[9] = at(0.38f, 0.5f + 0.45f * (j[11].y / scale - 0.5f) - 0.12f * std::sin(phase), -0.1f * raise);
        j[10] = Lerp(j[9], j[11], 0.85f);
        j[7] = at(0.3f + 0.15f * std::sin(phase) - (0.1f + 0.6f * (1.0f - clap)), 0.3f + 0.1f * clap, -0.15f);
        j[5] = at(-0.3f, 0.3f, -0.05f);
        j[6] = Lerp(j[5], j[7], 0.85f);
        j[12] = at(-0.1f, -0.05f, 0.0f);
        j[13] = at(-0.1f, -0.45f, -0.02f);
        j[14] = at(-0.1f, -0.85f, 0.0f);
        j[15] = at(-0.1f, -0.9f, -0.1f);
        j[16] = at(0.1f, -0.05f, 0.0f);
        j[17] = at(0.1f, -0.45f, -0.02f);
        j[18] = at(0.1f, -0.85f, 0.0f);
        j[19] = at(0.1f, -0.9f, -0.1f);
        for (int s = 0; s < kJointCount; ++s) frames[static_cast<size_t>(f) * kJointCount + s] = Point3{j[s].x, j[s].y, j[s].z};
    }
    return frames;
}

GestureConfigParam MakeParam(bool worker, int players) {
    GestureConfigParam param{};
    param.IsUseSubThread = worker ? 1 : 0;
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = players;
    param.SkeletonNum = kJointCount;
    param.SkeletonTypeArray = const_cast<int32_t*>(kJointTypes);
    param.VelocityFrameNum = kVelocityFrames;
    param.VelocityMulType = PELMORA_VELOCITY_EQUAL;
    param.IsGetVelocityData = 0;
    return param;
}

uint32_t FrameClock::Read(void* self) { return static_cast<FrameClock*>(self)->Now(); }

void FrameClock::Install() { SetTimeSource(&FrameClock::Read, this); }

void FrameClock::Uninstall() { SetTimeSource(nullptr, nullptr); }

// ---- The yardstick.

HandWritten::HandWritten(const std::vector<GestureRecipe>& gestures, int players, uint32_t startMs)
    : m_Players(static_cast<size_t>(players)) {
    for (const GestureRecipe& recipe : gestures) {
        m_Gestures.push_back(Gesture{recipe.kind, Literal(recipe.a), Literal(recipe.b), Literal(recipe.c)});
    }
    for (PlayerState& player : m_Players) {
        memset(player.position, 0, sizeof player.position);
        memset(player.velocity, 0, sizeof player.velocity);
        memset(player.history, 0, sizeof player.history);
        memset(player.steps, 0, sizeof player.steps);
        player.progress.assign(gestures.size(), Progress{0, startMs, startMs});
    }
}

// A failed qualification waits unless flagged to reset; one flagged to finish
// finishes when reached. The first qualification that does not succeed
// decides the segment.
#define PELMORA_BENCH_Q(condition, onFail) \
    do {                                   \
        if (Count) ++m_Checks;             \
        if (!(condition)) return onFail;   \
    } while (0)

template <bool Count>
HandWritten::Result HandWritten::Check(const Gesture& g, uint32_t segment, const Derived& d, const PlayerState& p,
                                       int32_t segmentTime, int32_t gestureTime) {
    const Vec3* pos = p.position;
    switch (g.kind * 3 + static_cast<int>(segment)) {
        case 0:
            PELMORA_BENCH_Q(segmentTime < 3000, Reset);
            PELMORA_BENCH_Q(d.handHeight < g.a, Failed);
            return Succeed;
        case 1:
            PELMORA_BENCH_Q(segmentTime < 1500, Reset);
            PELMORA_BENCH_Q(pos[PELMORA_JOINT_RIGHT_HAND].y > pos[PELMORA_JOINT_HEAD].y, Failed);
            return Succeed;
        case 2:
            PELMORA_BENCH_Q(d.handHeight < g.b, Failed);
            PELMORA_BENCH_Q(gestureTime < 4000, Reset);
            return Succeed;
        case 3:
            PELMORA_BENCH_Q(d.handDistance > g.a, Failed);
            PELMORA_BENCH_Q(d.shoulderWidth > 0.2f, Failed);
            return Succeed;
        case 4:
            PELMORA_BENCH_Q(segmentTime <= 2000, Reset);
            PELMORA_BENCH_Q(d.handDistance < g.b, Failed);
            return Succeed;
        case 5:
            PELMORA_BENCH_Q(d.handReach >= g.c, Failed);
            PELMORA_BENCH_Q(d.handForward != 0.0f, Failed);
            return Succeed;
        case 6:
            PELMORA_BENCH_Q(d.elbowAngle > g.a, Failed);
            PELMORA_BENCH_Q(pos[PELMORA_JOINT_RIGHT_HAND].y < pos[PELMORA_JOINT_RIGHT_SHOULDER].y, Failed);
            return Succeed;
        case 7:
            PELMORA_BENCH_Q(segmentTime < 2500, Reset);
            PELMORA_BENCH_Q(d.elbowAngle < g.b, Failed);
            return Succeed;
        case 8:
            PELMORA_BENCH_Q(pos[PELMORA_JOINT_RIGHT_ELBOW].y > pos[PELMORA_JOINT_RIGHT_SHOULDER].y, Failed);
            PELMORA_BENCH_Q(gestureTime < 5000, Reset);
            return Succeed;
        case 9:
            PELMORA_BENCH_Q(p.velocity[PELMORA_JOINT_RIGHT_HAND].x > g.a, Failed);
            PELMORA_BENCH_Q(d.handHeight > -0.6f, Failed);
            return Succeed;
        case 10:
            PELMORA_BENCH_Q(segmentTime < 1200, Reset);
            PELMORA_BENCH_Q(p.velocity[PELMORA_JOINT_RIGHT_HAND].x < g.b, Failed);
            return Succeed;
        default:
            PELMORA_BENCH_Q(d.handForward > g.c, Failed);
            if (Count) ++m_Checks;
            return Finish;
    }
}

#undef PELMORA_BENCH_Q

int HandWritten::Update(int player, const Point3* joints, uint32_t nowMs, PelmoraResult24* out) {
    PlayerState& p = m_Players[static_cast<size_t>(player)];

    // Position history and frame-to-frame velocities, summed over the history.
    const uint32_t previous = p.positionIndex;
    p.velocityIndex = (p.velocityIndex + 1) % (kVelocityFrames - 1);
    p.positionIndex = (previous + 1) % kVelocityFrames;
    p.tick[p.positionIndex] = nowMs;
    memcpy(p.history[p.positionIndex], joints, sizeof p.history[0]);
    if (++p.frames < 2) return -1;
    const Vec3* now = p.history[p.positionIndex];
    const Vec3* before = p.history[previous];
    Vec3* step = p.steps[p.velocityIndex];
    const uint32_t stepMs = nowMs - p.tick[previous];
    if (stepMs == 0) {
        memcpy(step, p.steps[(p.velocityIndex + kVelocityFrames - 2) % (kVelocityFrames - 1)], sizeof p.steps[0]);
    } else {
        const float dt = static_cast<float>(stepMs);
        for (int j = 0; j < kJointCount; ++j) {
            step[j] = Vec3{(now[j].x - before[j].x) / dt, (now[j].y - before[j].y) / dt, (now[j].z - before[j].z) / dt};
        }
    }
    if (p.frames < static_cast<uint64_t>(kVelocityFrames)) return -1;
    for (int j = 0; j < kJointCount; ++j) {
        Vec3 sum{0.0f, 0.0f, 0.0f};
        for (int e = 0; e < kVelocityFrames - 1; ++e) {
            sum.x += p.steps[e][j].x;
            sum.y += p.steps[e][j].y;
            sum.z += p.steps[e][j].z;
        }
        p.position[kJointTypes[j]] = now[j];
        p.velocity[kJointTypes[j]] = sum;
    }

    // The processing block.
    const Vec3* pos = p.position;
    Derived d;
    d.handOffset = Sub(pos[PELMORA_JOINT_RIGHT_HAND], pos[PELMORA_JOINT_HEAD]);
    d.handHeight = pos[PELMORA_JOINT_RIGHT_HAND].y - pos[PELMORA_JOINT_HEAD].y;
    d.handDistance = Distance(pos[PELMORA_JOINT_RIGHT_HAND], pos[PELMORA_JOINT_LEFT_HAND]);
    d.rightArm = Sub(pos[PELMORA_JOINT_RIGHT_HAND], pos[PELMORA_JOINT_RIGHT_ELBOW]);
    d.rightUpperArm = Sub(pos[PELMORA_JOINT_RIGHT_ELBOW], pos[PELMORA_JOINT_RIGHT_SHOULDER]);
    d.elbowAngle = Angle(d.rightArm, d.rightUpperArm);
    d.shoulderLine = Sub(pos[PELMORA_JOINT_RIGHT_SHOULDER], pos[PELMORA_JOINT_LEFT_SHOULDER]);
    d.shoulderWidth = Length(d.shoulderLine);
    d.handForward = Dot(d.handOffset, d.shoulderLine);
    d.handReach = d.handDistance / d.shoulderWidth;

    // Every gesture's current segment, then its progress.
    int written = 0;
    for (size_t g = 0; g < m_Gestures.size(); ++g) {
        Progress& progress = p.progress[g];
        const uint32_t segmentTime = nowMs - progress.segmentStart;
        const uint32_t gestureTime = nowMs - progress.gestureStart;
        const Result result =
            m_Counting ? Check<true>(m_Gestures[g], progress.segment, d, p, static_cast<int32_t>(segmentTime),
                                     static_cast<int32_t>(gestureTime))
                       : Check<false>(m_Gestures[g], progress.segment, d, p, static_cast<int32_t>(segmentTime),
                                      static_cast<int32_t>(gestureTime));
        PelmoraResult24& record = out[written++];
        record.gestureIndex = static_cast<int32_t>(g);
        record.segmentIndex = static_cast<int32_t>(progress.segment);
        record.gestureTimeMs = static_cast<int32_t>(gestureTime);
        record.segmentTimeMs = static_cast<int32_t>(segmentTime);
        record.succeeded = result == Succeed || result == Finish;
        record.finished = 0;
        if (result == Succeed && progress.segment + 1 < 3) {
            ++progress.segment;
            progress.segmentStart = nowMs;
        } else if (result != Failed) {
            record.finished = result != Reset;
            progress = Progress{0, nowMs, nowMs};
        }
    }
    return written;
}

}  // namespace PelmoraBench
