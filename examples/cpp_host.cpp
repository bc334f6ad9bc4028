// cpp_host - a minimal C++ host in worker mode: the library evaluates on its
// own thread, woken once per frame; results are read back when the pass has
// published them. It also looks at the compiled gestures through the
// exported PelmoraLib classes. Usage: cpp_host [CONFIG.xml] (default: a
// one-gesture configuration given as text).
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "pelmora.hpp"

namespace {

const char* kConfig = R"(<AppConfig>
  <Gesture name="HandsUp"><Segment>
    <Qualification QualificationEnum="Greate" value1="@P_LeftHand.y" value2="@P_Head.y"/>
    <Qualification QualificationEnum="Greate" value1="@P_RightHand.y" value2="@P_Head.y"/>
  </Segment></Gesture>
</AppConfig>)";

// The library's clock, advanced by the host one frame (33 ms) at a time.
std::atomic<uint32_t> g_NowMs{1000};

struct Library {  // InitPelmora ... ClosePelmora, whatever happens between
    explicit Library(GestureConfigParam param) {
        SetTimeSource([](void*) { return g_NowMs.load(); }, nullptr);
        InitPelmora(&param);
    }
    ~Library() { ClosePelmora(); SetTimeSource(nullptr, nullptr); }
};

// A pass that evaluated the frame publishes a result set; warm-up frames
// publish none, so the wait is bounded.
bool WaitForResults(std::vector<PelmoraResult16>& results, uint32_t& count) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (!GetPlayerGestureState(0, results.data(), &count)) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int32_t> joints = {PELMORA_JOINT_HEAD, PELMORA_JOINT_LEFT_HAND, PELMORA_JOINT_RIGHT_HAND};
    GestureConfigParam param{};
    param.IsUseSubThread = 1;
    param.ReturnInfoType = PELMORA_RETURN_INFO_16;
    param.PlayerNum = 1;
    param.SkeletonNum = static_cast<int32_t>(joints.size());
    param.SkeletonTypeArray = joints.data();
    Library library(param);

    if (!(argc > 1 ? LoadConfigFile(argv[1]) : LoadConfigData(kConfig)) || !StartGestureWork()) return 1;
    // Compiled objects may be read before work starts; afterwards they belong to the worker.
    PelmoraLib::GestureTable* table = PelmoraLib::Pelmora::Get()->GetGestureTable(0);
    for (size_t g = 0; g < table->GetGestureNum(); ++g)
        std::printf("%s: %llu segment(s)\n", table->GetGesture(g)->GetName(),
                    static_cast<unsigned long long>(table->GetGesture(g)->GetSegmentSize()));

    SetPlayer(0, true);  // queued: applied at the start of the next pass
    for (uint32_t g = 0; g < GetGestureNum(0); ++g) SetPlayerGesture(0, g, true);

    std::vector<PelmoraResult16> results(GetGestureNum(0) ? GetGestureNum(0) : 1);
    int finishes = 0;
    for (int frame = 0; frame < 12; ++frame) {
        g_NowMs += 33;
        const float hands = frame >= 6 && frame < 9 ? 2.0f : 1.0f;  // both hands up in frames 6-8
        const std::vector<Point3> skeleton = {{0.0f, 1.6f, 2.5f}, {-0.4f, hands, 2.4f}, {0.4f, hands, 2.4f}};
        UpdateSketonData(0, skeleton.data(), static_cast<int32_t>(skeleton.size()));
        OnIdle();
        uint32_t count = 0;
        if (frame == 0) {  // only warms the player up: its pass publishes nothing to wait for
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            continue;
        }
        if (!WaitForResults(results, count)) continue;
        for (uint32_t k = 0; k < count; ++k) {
            if (!results[k].finished) continue;
            ++finishes;
            std::printf("frame %d: %s finished\n", frame, GetGestureName(0, static_cast<uint32_t>(results[k].gestureIndex)));
        }
    }
    std::printf("%d finishes\n", finishes);
    return finishes > 0 ? 0 : 1;
}
