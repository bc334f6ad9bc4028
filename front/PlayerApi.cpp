// The exported per-player calls: skeleton frames in, results and velocities
// out, and the switches of players and gestures. Queued calls hand a command
// to the worker's next pass; immediate calls act at once on the caller's
// thread and differ on purpose (disabling keeps progress, a reset keeps the
// time stamps). Negative player indices are refused like too large ones.
// Thread-safety: data and queued calls are safe while the worker runs and
// never wait for it; the immediate calls belong to the mode without a worker,
// and should a host use them beside one, they wait for its running pass.
#include <algorithm>
#include <cstring>

#include "engine/Diagnostics.h"
#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "engine/TCResetGesture.h"
#include "engine/TCSetGestureState.h"
#include "engine/TCSetPlayerState.h"
#include "engine/ThreadCommandPool.h"
#include "front/ApiGuard.h"
#include "front/WorkerPause.h"
#include "gesture/GestureTable.h"
#include "pelmora.h"
#include "player/Player.h"

using namespace PelmoraLib;

namespace {

// Resolves a gesture name for one of the index calls.
template <class IndexCall>
void WithGestureIndex(const char* site, int engineLine, int tableLine, int32_t player, const char* name,
                      IndexCall call) {
    Pelmora* engine = Pelmora::Get(site, engineLine);
    if (!engine) return;
    GestureTable* table = engine->GetGestureTable(player);
    if (!table) {
        Diagnostics::Located(site, tableLine, Diagnostics::kGestureTable);
        return;
    }
    call(static_cast<uint32_t>(table->GetGestureIndex(name)));
}

// The progress record for an immediate call, or null after its messages.
PlayerGestureInfo* ImmediateGesture(const char* site, int line, const char* noGestureFormat, int32_t player,
                                    uint32_t gesture) {
    PlayerManager* players = PlayerManager::Get(site, line);
    if (!players) return nullptr;
    Player* target = players->GetPlayer(player);
    if (!target) return nullptr;
    if (gesture == PELMORA_NO_GESTURE) {
        printf(noGestureFormat, gesture);
        return nullptr;
    }
    return target->GetGestureInfo(gesture);
}

}  // namespace

// ---- Queued.

void SetPlayer(int32_t player, bool track) {
    Guarded("SetPlayer", [&] {
        Pelmora* engine = Pelmora::Get("SetPlayer", 225);
        if (!engine) return;
        TCSetPlayerState* command = ThreadCommandPool::Make<TCSetPlayerState>();
        command->Set(player, track);
        engine->PushThreadCommand(command);
    });
}

void SetPlayerGesture(int32_t player, uint32_t gesture, bool enable) {
    Guarded("SetPlayerGesture", [&] {
        Pelmora* engine = Pelmora::Get("SetPlayerGesture", 173);
        if (!engine) return;
        TCSetGestureState* command = ThreadCommandPool::Make<TCSetGestureState>();
        command->Set(player, gesture, enable);
        engine->PushThreadCommand(command);
    });
}

void SetPlayerGestureFromName(int32_t player, const char* name, bool enable) {
    WithGestureIndex("SetPlayerGestureFromName", 188, 191, player, name,
                     [&](uint32_t gesture) { SetPlayerGesture(player, gesture, enable); });
}

void ResetPlayerGesture(int32_t player, uint32_t gesture) {
    Guarded("ResetPlayerGesture", [&] {
        Pelmora* engine = Pelmora::Get("ResetPlayerGesture", 200);
        if (!engine) return;
        TCResetGesture* command = ThreadCommandPool::Make<TCResetGesture>();
        command->Set(player, gesture);
        engine->PushThreadCommand(command);
    });
}

void ResetPlayerGestureFromName(int32_t player, const char* name) {
    WithGestureIndex("ResetPlayerGestureFromName", 213, 216, player, name,
                     [&](uint32_t gesture) { ResetPlayerGesture(player, gesture); });
}

// ---- Immediate.

void SetPlayerImmediate(int32_t player, bool track) {
    WorkerPause pause(WorkerPause::PassesOnly);
    PlayerManager* players = PlayerManager::Get("SetPlayerImmediate", 314);
    if (!players) return;
    if (Player* target = players->GetPlayer(player)) target->SetIsUpdate(track);
}

void SetPlayerGestureImmediate(int32_t player, uint32_t gesture, bool enable) {
    WorkerPause pause(WorkerPause::PassesOnly);
    PlayerGestureInfo* info = ImmediateGesture("SetPlayerGestureImmediate", 238,
                                               "SetPlayerGesture Error! No such gesture: %u!\n", player, gesture);
    if (!info) return;
    info->m_IsActive = enable;
    if (enable) info->Reset();
}

void SetPlayerGestureImmediateFromName(int32_t player, const char* name, bool enable) {
    WithGestureIndex("SetPlayerGestureImmediateFromName", 264, 267, player, name,
                     [&](uint32_t gesture) { SetPlayerGestureImmediate(player, gesture, enable); });
}

void ResetPlayerGestureImmediate(int32_t player, uint32_t gesture) {
    WorkerPause pause(WorkerPause::PassesOnly);
    PlayerGestureInfo* info = ImmediateGesture("ResetPlayerGestureImmediate", 276,
                                               "ResetPlayerGestureImmediate Error! No such gesture: %u!\n", player,
                                               gesture);
    if (info) info->ClearProgress();
}

void ResetPlayerGestureImmediateFromName(int32_t player, const char* name) {
    WithGestureIndex("ResetPlayerGestureImmediateFromName", 302, 305, player, name,
                     [&](uint32_t gesture) { ResetPlayerGestureImmediate(player, gesture); });
}

// ---- Data.

bool UpdateSketonData(int32_t player, const Point3* joints, int32_t count) {
    PlayerManager* players = PlayerManager::Get("UpdateSketonData", 325);
    if (!players || !joints) return false;
    Player* target = players->PlayerAt(player);
    return target && target->UpdatePlayerInfo(joints, count);
}

bool UpdateSketonDataImmediate(int32_t player, const Point3* joints, int32_t count, void* results,
                               uint32_t* resultCount) {
    return Guarded("UpdateSketonDataImmediate", false, [&] {
        WorkerPause pause(WorkerPause::PassesOnly);
        PlayerManager* players = PlayerManager::Get("UpdateSketonDataImmediate", 332);
        if (!players) return false;
        Player* target = players->PlayerAt(player);
        if (joints && target) target->UpdatePlayerInfoImmediate(joints, count);
        return GetPlayerGestureState(player, results, resultCount);
    });
}

bool GetPlayerGestureState(int32_t player, void* results, uint32_t* resultCount) {
    PlayerManager* players = PlayerManager::Get("GetPlayerGestureState", 341);
    if (!players) return false;
    Player* target = players->GetPlayer(player);
    if (!results || !resultCount || !target || !target->CheckHasNewData()) return false;
    ScopedLock reader(target->GetResultReaderLock());
    const ReturnGestureInfoBuffer& buffer = target->BeginReadGestureInfoBuffer();
    *resultCount = static_cast<uint32_t>(buffer.m_Count);
    // Never more than the slot holds, even if a misused immediate call raced
    // the worker on the same slot.
    const size_t bytes = std::min(buffer.m_Data.size(), static_cast<size_t>(buffer.m_Count * target->GetReturnInfoSize()));
    if (bytes > 0) memcpy(results, buffer.m_Data.data(), bytes);
    target->EndReadGestureInfoBuffer();
    return true;
}

bool GetPlayerVelocityData(int32_t player, Point3* joints, int32_t count) {
    PlayerManager* players = PlayerManager::Get("GetPlayerVelocityData", 363);
    if (!players) return false;
    Player* target = players->GetPlayer(player);
    if (!joints || !target) return false;
    MulBuffer<SkeletonPositionInfo>& velocities = target->GetAfterCalLastPosVelocityInfo();
    ScopedLock reader(velocities.HostLock());
    const SkeletonPositionInfo& slot = velocities.BeginRead();
    const bool sameSize = count >= 0 && static_cast<size_t>(count) == slot.size();
    if (sameSize && count > 0) memcpy(joints, slot.data(), slot.size() * sizeof(Point3));
    velocities.EndRead();
    return sameSize;
}
