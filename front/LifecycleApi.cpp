// The exported calls that create and destroy the library's singletons, load
// and compile the configuration, pace the worker and look gestures up. Each
// is a thin guard around a singleton: missing pieces are reported by the
// accessor's line and a located line, and the neutral result is returned.
// Thread-safety: lifecycle and configuration calls belong to one host thread
// while no pass runs; the look-ups only read compiled tables.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

#include "config/GestureConfigManager.h"
#include "engine/Diagnostics.h"
#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "front/ApiGuard.h"
#include "front/WorkerPause.h"
#include "gesture/GestureTable.h"
#include "pelmora.h"

using namespace PelmoraLib;

namespace {

const uint32_t kNoGesture = PELMORA_NO_GESTURE;

GestureTable* TableOrReport(Pelmora& engine, int32_t player, const char* site, int line) {
    GestureTable* table = engine.GetGestureTable(player);
    if (!table) Diagnostics::Located(site, line, Diagnostics::kGestureTable);
    return table;
}

// Sizes past the documented limits would be allocated per player, per joint
// and per frame of history: the record is refused whole, before anything is
// built.
bool WithinLimits(const GestureConfigParam& param) {
    const struct {
        const char* field;
        int32_t value;
        int32_t limit;
    } sizes[] = {{"PlayerNum", param.PlayerNum, PELMORA_MAX_PLAYERS},
                 {"SkeletonNum", param.SkeletonNum, PELMORA_MAX_JOINTS},
                 {"VelocityFrameNum", param.VelocityFrameNum, PELMORA_MAX_VELOCITY_FRAMES}};
    for (const auto& size : sizes) {
        if (size.value <= size.limit) continue;
        printf("InitPelmora Error: %s %d is above the limit of %d\n", size.field, size.value, size.limit);
        return false;
    }
    // Each within its limit, the three together can still ask for gigabytes.
    const int64_t points = int64_t{std::max(param.PlayerNum, 0)} * std::max(param.VelocityFrameNum, 2) *
                           std::max(param.SkeletonNum, 0);
    if (points <= PELMORA_MAX_HISTORY_POINTS) return true;
    printf("InitPelmora Error: PlayerNum x VelocityFrameNum x SkeletonNum %lld is above the limit of %d\n",
           static_cast<long long>(points), PELMORA_MAX_HISTORY_POINTS);
    return false;
}

}  // namespace

// A second call without ClosePelmora says that each singleton exists and
// rebuilds the players and their tables for the new record; the earlier
// worker is stopped first. A refused record leaves everything as it was.
void InitPelmora(GestureConfigParam* param) {
    Guarded("InitPelmora", [&] {
        if (!param) {
            printf("InitPelmora Error: GestureConfigParam is NULL\n");
            return;
        }
        if (!WithinLimits(*param)) return;
        Pelmora* engine = Pelmora::Create();
        GestureConfigManager::Create();
        PlayerManager* players = PlayerManager::Create();
        engine->Init(*param);
        WorkerPause pause(WorkerPause::PassesAndCommands);
        players->Init(*param);
    });
}

void ClosePelmora(void) {
    Guarded("ClosePelmora", [] {
        Pelmora::Close();
        PlayerManager::Release();
        GestureConfigManager::Close();
    });
}

int32_t SubThreadFPS(void) {
    Pelmora* engine = Pelmora::Get("SubThreadFPS", 83);
    if (!engine) return 0;
    return engine->SubThreadFPS();
}

bool LoadConfigFile(const char* path) {
    return Guarded("LoadConfigFile", false, [&] {
        GestureConfigManager* manager = GestureConfigManager::Get("LoadConfigFile", 90);
        if (!manager) return false;
        WorkerPause pause(WorkerPause::PassesAndCommands);
        if (manager->LoadFromFile(path)) return true;
        printf("Loading %s failed!\n", path ? path : "(null)");
        return false;
    });
}

bool LoadConfigData(const char* xml) {
    if (!xml) return false;
    return Guarded("LoadConfigData", false, [&] {
        GestureConfigManager* manager = GestureConfigManager::Get("LoadConfigData", 106);
        if (!manager) return false;
        WorkerPause pause(WorkerPause::PassesAndCommands);
        if (manager->LoadFromMemory(xml)) return true;
        printf("Loading XMLData failed!\n");
        return false;
    });
}

bool StartGestureWork(void) {
    return Guarded("StartGestureWork", false, [] {
        GestureConfigManager* manager = GestureConfigManager::Get("StartGestureWork", 119);
        if (!manager) return false;
        PlayerManager* players = PlayerManager::Get("StartGestureWork", 121);
        if (!players) return false;
        WorkerPause pause(WorkerPause::PassesAndCommands);
        if (!manager->Compiler()) return false;
        printf("All GestureConfig Compiler Succeed!!\n");
        players->InitGestureData();
        return true;
    });
}

void OnIdle(void) {
    Pelmora* engine = Pelmora::Get("OnIdle", 136);
    if (!engine) return;
    engine->UpdateAll();
}

uint32_t GetGestureIndex(int32_t player, const char* name) {
    return Guarded("GetGestureIndex", kNoGesture, [&] {
        Pelmora* engine = Pelmora::Get("GetGestureIndex", 142);
        if (!engine) return kNoGesture;
        GestureTable* table = TableOrReport(*engine, player, "GetGestureIndex", 144);
        return table ? static_cast<uint32_t>(table->GetGestureIndex(name)) : kNoGesture;
    });
}

const char* GetGestureName(int32_t player, uint32_t gesture) {
    Pelmora* engine = Pelmora::Get("GetGestureName", 151);
    if (!engine) return "";
    GestureTable* table = TableOrReport(*engine, player, "GetGestureName", 153);
    if (!table) return "";
    Gesture* found = gesture == kNoGesture ? nullptr : table->GetGesture(static_cast<size_t>(gesture));
    if (!found) {
        Diagnostics::Located("GetGestureName", 156, Diagnostics::kGesture);
        return "";
    }
    return found->GetName();
}

uint64_t GetGestureNum(int32_t player) {
    Pelmora* engine = Pelmora::Get("GetGestureNum", 163);
    if (!engine) return 0;
    GestureTable* table = TableOrReport(*engine, player, "GetGestureNum", 166);
    return table ? table->GetGestureNum() : 0;
}

// As the C runtime's _stricmp, which answers an invalid (null) argument with
// INT32_MAX.
int32_t Stricmp(const char* a, const char* b) {
    if (!a || !b) return INT32_MAX;
    for (;; ++a, ++b) {
        const int left = tolower(static_cast<unsigned char>(*a));
        const int right = tolower(static_cast<unsigned char>(*b));
        if (left != right || left == 0) return left - right;
    }
}

const char* GetLastConfigError(void) { return GestureConfigManager::GetLastError(); }

void PelmoraVersion(int* major, int* minor, int* patch) {
    if (major) *major = PELMORA_VERSION_MAJOR;
    if (minor) *minor = PELMORA_VERSION_MINOR;
    if (patch) *patch = PELMORA_VERSION_PATCH;
}
