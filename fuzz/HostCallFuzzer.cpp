// Fuzzes hosts: the input decodes into a sequence of calls of every export
// with arbitrary arguments (indices, names, counts, coordinates including NaN
// and infinities, null pointers), in immediate or worker mode, ending with
// ClosePelmora. Buffers handed in are as large as the interface asks.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "FuzzHost.h"

namespace {

using namespace PelmoraFuzz;

const char* const kDocument =
    "<AppConfig><IdentfyValues><Value type='float' name='Reach'/></IdentfyValues>"
    "<Processing update='1'><Function name='DISTANCE' return='@Reach' value1='@P_RightHand' value2='@P_Head'/>"
    "</Processing><Gesture name='Up'><Segment><Qualification QualificationEnum='Greate' "
    "value1='@P_RightHand.y' value2='@P_Head.y'/></Segment><Segment><Qualification QualificationEnum='Less' "
    "value1='@Reach' value2='0.5' IsResetOnFailed='1'/></Segment></Gesture>"
    "<Gesture name='Up'><Segment/></Gesture></AppConfig>";

const int kMaxJoints = 40;

uint32_t FixedTime(void* user) { return *static_cast<uint32_t*>(user); }

class Host {
public:
    explicit Host(FuzzedDataProvider& input) : m_Input(input) {}

    void Run() {
        Init();
        while (m_Input.remaining_bytes() > 0) Step();
        ClosePelmora();
        SetTimeSource(nullptr, nullptr);
        SetDebugInfo(false);
    }

private:
    void Init() {
        GestureConfigParam param = MakeParam(m_Input.ConsumeIntegralInRange<int32_t>(0, 3), m_Input.ConsumeBool());
        param.ReturnInfoType = m_Input.ConsumeIntegralInRange<int32_t>(-1, 3);
        param.VelocityFrameNum = m_Input.ConsumeIntegralInRange<int32_t>(-1, 5);
        InitPelmora(&param);
        LoadConfigData(kDocument);
        StartGestureWork();
    }

    int32_t PlayerIndex() {
        if (m_Input.ConsumeIntegralInRange(0, 15) == 0) return m_Input.ConsumeIntegral<int32_t>();
        return m_Input.ConsumeIntegralInRange<int32_t>(-2, 4);
    }

    uint32_t GestureIndex() {
        switch (m_Input.ConsumeIntegralInRange(0, 3)) {
            case 0: return PELMORA_NO_GESTURE;
            case 1: return m_Input.ConsumeIntegral<uint32_t>();
            default: return m_Input.ConsumeIntegralInRange<uint32_t>(0, 3);
        }
    }

    // Null or a short text, sometimes a gesture name.
    const char* Name() {
        switch (m_Input.ConsumeIntegralInRange(0, 3)) {
            case 0: return nullptr;
            case 1: return "Up";
            default: m_Name = m_Input.ConsumeRandomLengthString(16); return m_Name.c_str();
        }
    }

    float Coordinate() {
        static const float special[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                                        -std::numeric_limits<float>::infinity(), 0.0f, -0.0f,
                                        std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min()};
        if (m_Input.ConsumeIntegralInRange(0, 7) == 0) return special[m_Input.ConsumeIntegralInRange(0, 6)];
        return m_Input.ConsumeFloatingPointInRange<float>(-5.0f, 5.0f);
    }

    // A frame of `count` joints (the host's buffer holds them all).
    Point3* Frame(int32_t& count) {
        count = m_Input.ConsumeIntegralInRange<int32_t>(-2, kMaxJoints);
        if (m_Input.ConsumeIntegralInRange(0, 9) == 0) return nullptr;
        const bool plain = m_Input.ConsumeBool();
        MakeFrame(m_Frame, static_cast<float>(m_Step));
        for (int32_t j = 0; j < std::max(count, 1); ++j) {
            if (!plain) m_Frame[j] = Point3{Coordinate(), Coordinate(), Coordinate()};
        }
        return m_Frame;
    }

    // Room for one record of the largest layout per gesture of any player.
    void* Results() {
        if (m_Input.ConsumeIntegralInRange(0, 9) == 0) return nullptr;
        uint64_t most = 0;
        for (int32_t p = 0; p < 4; ++p) most = std::max(most, GetGestureNum(p));
        m_Results.assign(static_cast<size_t>(most) + 1, PelmoraResult24{});
        return m_Results.data();
    }

    uint32_t* Count() { return m_Input.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : &m_Count; }

    void Step() {
        ++m_Step;
        int32_t count = 0;
        switch (m_Input.ConsumeIntegralInRange(0, 27)) {
            case 0: SetPlayer(PlayerIndex(), m_Input.ConsumeBool()); break;
            case 1: SetPlayerGesture(PlayerIndex(), GestureIndex(), m_Input.ConsumeBool()); break;
            case 2: SetPlayerGestureFromName(PlayerIndex(), Name(), m_Input.ConsumeBool()); break;
            case 3: ResetPlayerGesture(PlayerIndex(), GestureIndex()); break;
            case 4: ResetPlayerGestureFromName(PlayerIndex(), Name()); break;
            case 5: SetPlayerImmediate(PlayerIndex(), m_Input.ConsumeBool()); break;
            case 6: SetPlayerGestureImmediate(PlayerIndex(), GestureIndex(), m_Input.ConsumeBool()); break;
            case 7: SetPlayerGestureImmediateFromName(PlayerIndex(), Name(), m_Input.ConsumeBool()); break;
            case 8: ResetPlayerGestureImmediate(PlayerIndex(), GestureIndex()); break;
            case 9: ResetPlayerGestureImmediateFromName(PlayerIndex(), Name()); break;
            case 10: {
                const int32_t player = PlayerIndex();
                Point3* frame = Frame(count);
                UpdateSketonData(player, frame, count);
                break;
            }
            case 11: {
                const int32_t player = PlayerIndex();
                Point3* frame = Frame(count);
                UpdateSketonDataImmediate(player, frame, count, Results(), Count());
                break;
            }
            case 12: {
                const int32_t player = PlayerIndex();
                GetPlayerGestureState(player, Results(), Count());
                break;
            }
            case 13: {
                const int32_t player = PlayerIndex();
                count = m_Input.ConsumeIntegralInRange<int32_t>(-2, kMaxJoints);
                GetPlayerVelocityData(player, m_Input.ConsumeBool() ? m_Frame : nullptr, count);
                break;
            }
            case 14: OnIdle(); break;
            case 15: GetGestureIndex(PlayerIndex(), Name()); break;
            case 16: GetGestureName(PlayerIndex(), GestureIndex()); break;
            case 17: GetGestureNum(PlayerIndex()); break;
            case 18: SubThreadFPS(); break;
            case 19: {
                const std::string first = m_Input.ConsumeRandomLengthString(8);
                Stricmp(m_Input.ConsumeBool() ? first.c_str() : nullptr, Name());
                break;
            }
            case 20: SetDebugInfo(m_Input.ConsumeIntegralInRange(0, 7) == 0); break;
            case 21: {
                const std::string text = m_Input.ConsumeBool() ? kDocument : m_Input.ConsumeRandomLengthString(64);
                LoadConfigData(m_Input.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : text.c_str());
                break;
            }
            case 22: StartGestureWork(); break;
            case 23: ClosePelmora(); Init(); break;
            case 24: {
                GestureConfigParam param = MakeParam(m_Input.ConsumeIntegralInRange<int32_t>(-1, 3), m_Input.ConsumeBool());
                InitPelmora(m_Input.ConsumeIntegralInRange(0, 9) == 0 ? nullptr : &param);
                break;
            }
            case 25: GetLastConfigError(); break;
            case 26:
                m_Time = m_Input.ConsumeIntegral<uint32_t>();
                SetTimeSource(m_Input.ConsumeBool() ? &FixedTime : nullptr, &m_Time);
                break;
            case 27: {
                static const char* const paths[] = {nullptr, "/", "/nonexistent/pelmora.xml", "/dev/null"};
                LoadConfigFile(paths[m_Input.ConsumeIntegralInRange(0, 3)]);
                break;
            }
        }
    }

    FuzzedDataProvider& m_Input;
    std::string m_Name;
    Point3 m_Frame[kMaxJoints];
    std::vector<PelmoraResult24> m_Results;
    uint32_t m_Count = 0;
    uint32_t m_Time = 0;
    int m_Step = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Silence();
    FuzzedDataProvider input(data, size);
    Host(input).Run();
    return 0;
}
