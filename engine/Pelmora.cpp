#include "engine/Pelmora.h"

#include <cstddef>
#include <cstdio>

#include "engine/Clock.h"
#include "engine/Diagnostics.h"
#include "engine/PlayerManager.h"
#include "engine/ThreadCommand.h"
#include "engine/ThreadCommandPool.h"
#include "gesture/GestureTable.h"
#include "processing/ProcessingTable.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

// The record crosses the C interface: hosts in other languages lay it out by
// hand, so its size and offsets must never move.
static_assert(sizeof(GestureConfigParam) == 40, "GestureConfigParam must be 40 bytes");
static_assert(offsetof(GestureConfigParam, ReturnInfoType) == 4 && offsetof(GestureConfigParam, PlayerNum) == 8 &&
                  offsetof(GestureConfigParam, SkeletonNum) == 12 &&
                  offsetof(GestureConfigParam, SkeletonTypeArray) == 16 &&
                  offsetof(GestureConfigParam, VelocityFrameNum) == 24 &&
                  offsetof(GestureConfigParam, VelocityMulType) == 28 &&
                  offsetof(GestureConfigParam, IsGetVelocityData) == 32,
              "GestureConfigParam fields moved");

std::atomic<Pelmora*> Pelmora::ms_Instance{nullptr};
CriticalSection Pelmora::m_PelmoraLock;

namespace {

// The index widened with its sign and compared unsigned: negative indices
// are out of range too.
template <class Table>
Table* PlayerTable(const std::vector<std::unique_ptr<Table>>& tables, int playerIndex, const char* getter) {
    if (static_cast<uint64_t>(static_cast<int64_t>(playerIndex)) >= tables.size()) {
        printf("PlayerIndex:%d is out of range in %s\n", playerIndex, getter);
        return nullptr;
    }
    return tables[static_cast<size_t>(playerIndex)].get();
}

}  // namespace

Pelmora* Pelmora::Get() {
    Pelmora* engine = ms_Instance.load(std::memory_order_acquire);
    if (!engine) printf("Pelmora::Instance do not been created before calling get function.\n");
    return engine;
}

Pelmora* Pelmora::Get(const char* site, int line) {
    Pelmora* engine = Get();
    if (!engine) Diagnostics::Located(site, line, Diagnostics::kPelmora);
    return engine;
}

IdentifyValues* Pelmora::PlayerValues(int playerIndex, const char* site, int engineLine, int poolLine) {
    Pelmora* engine = Get(site, engineLine);
    if (!engine) return nullptr;
    IdentifyValues* pool = engine->GetIdentifyValue(playerIndex);
    if (!pool) Diagnostics::Located(site, poolLine, Diagnostics::kIdentifyValues);
    return pool;
}

Pelmora* Pelmora::Create() {
    Pelmora* engine = ms_Instance.load(std::memory_order_acquire);
    if (engine) {
        printf("Pelmora::Instance has been created before.\n");
        return engine;
    }
    engine = new Pelmora();
    ms_Instance.store(engine, std::memory_order_release);
    return engine;
}

// The engine is destroyed before the pointer is emptied: its destructor joins
// the worker, whose last pass may still look the engine up.
void Pelmora::Close() {
    Pelmora* engine = ms_Instance.load(std::memory_order_acquire);
    if (!engine) {
        printf("Pelmora::Instance do not be created do nothing.\n");
        return;
    }
    delete engine;
    ms_Instance.store(nullptr, std::memory_order_release);
}

void Pelmora::Lock() { m_PelmoraLock.Enter(); }

void Pelmora::Unlock() { m_PelmoraLock.Leave(); }

Pelmora::~Pelmora() {
    StopWorker();
    ReleaseTables();
    // Commands still queued are dropped unexecuted; their objects go back to
    // the pool rather than leak.
    ScopedLock lock(m_PelmoraLock);
    for (ThreadCommand* command : m_Commands) ThreadCommandPool::GiveBack(command);
    m_Commands.clear();
}

void Pelmora::Init(GestureConfigParam& param) {
    StopWorker();
    ReleaseTables();
    m_IsUseSubThread = param.IsUseSubThread != 0;
    m_ReturnInfoType = static_cast<eReturnInfoType>(param.ReturnInfoType);
    if (param.ReturnInfoType < ReturnInfo8 || param.ReturnInfoType > ReturnInfo24)
        printf("ReturnInfoType %d is not supported, no gesture results will be returned.\n", param.ReturnInfoType);

    const size_t players = param.PlayerNum > 0 ? static_cast<size_t>(param.PlayerNum) : 0;
    for (size_t index = 0; index < players; ++index) {
        m_IdentifyValues.emplace_back(new IdentifyValues());
        m_ProcessingTables.emplace_back(new ProcessingTable());
        m_GestureTables.emplace_back(new GestureTable());
    }
    if (m_IsUseSubThread) StartWorker();
}

void Pelmora::ReleaseTables() {
    m_IdentifyValues.clear();
    m_ProcessingTables.clear();
    m_GestureTables.clear();
}

IdentifyValues* Pelmora::GetIdentifyValue(int playerIndex) {
    return PlayerTable(m_IdentifyValues, playerIndex, "GetIdentifyValue");
}

ProcessingTable* Pelmora::GetProcessingTable(int playerIndex) {
    return PlayerTable(m_ProcessingTables, playerIndex, "GetProcessingTable");
}

GestureTable* Pelmora::GetGestureTable(int playerIndex) {
    return PlayerTable(m_GestureTables, playerIndex, "GetGestureTable");
}

void Pelmora::ClearIdentify() {
    ScopedLock commands(m_PelmoraLock);
    std::lock_guard<std::mutex> passes(m_PassLock);
    for (auto& pool : m_IdentifyValues) {
        if (pool) pool->Clear();
    }
}

void Pelmora::ClearComilperResult() {
    ScopedLock commands(m_PelmoraLock);
    std::lock_guard<std::mutex> passes(m_PassLock);
    for (auto& table : m_ProcessingTables) {
        if (table) table->Clear();
    }
    for (auto& table : m_GestureTables) {
        if (table) table->Clear();
    }
}

// ---- Command queue.

void Pelmora::PushThreadCommand(ThreadCommand* command) {
    ScopedLock lock(m_PelmoraLock);
    m_Commands.push_back(command);
}

void Pelmora::ProcessingThreadCommand() {
    ScopedLock lock(m_PelmoraLock);
    for (ThreadCommand* command : m_Commands) {
        if (!command) continue;
        command->DoCommand();
        ThreadCommandPool::GiveBack(command);
    }
    m_Commands.clear();
}

// ---- Worker.

void Pelmora::StartWorker() {
    m_Running.store(true, std::memory_order_relaxed);
    m_Worker = std::thread(&Pelmora::WorkerProcedure);
}

void Pelmora::StopWorker() {
    if (!m_Worker.joinable()) return;
    m_Running.store(false, std::memory_order_relaxed);
    m_WakeEvent.Signal();
    m_Worker.join();
    m_WakeEvent.Reset();
}

void Pelmora::WorkerProcedure() {
    printf("Pelmora Sub Thread Starting\n");
    Pelmora* engine = Get();
    if (!engine) {
        printf("Pelmora is NULL when update gesture sub thread!!\n");
    } else {
        while (engine->UpdateGestureThread()) {
        }
    }
    printf("Pelmora Sub Thread Closing\n");
}

void Pelmora::UpdateAll() { m_WakeEvent.Signal(); }

// The wake event orders the running flag: it is read only after a wait. The
// commands run before the pass lock is taken, so the two locks are never
// nested here and a host holding m_PelmoraLock cannot deadlock with a pass.
bool Pelmora::UpdateGestureThread() {
    m_WakeEvent.Wait();
    if (!m_Running.load(std::memory_order_relaxed)) return false;
    ProcessingThreadCommand();
    PlayerManager* players = PlayerManager::Get("PelmoraLib::Pelmora::UpdateGestureThread", 185);
    if (!players) return false;
    {
        std::lock_guard<std::mutex> pass(m_PassLock);
        players->UpdatePlayers();
    }
    if (m_LastPassTime != 0) m_FrameRate.Add(Clock::NowMs() - m_LastPassTime);
    m_LastPassTime = Clock::NowMs();
    return m_Running.load(std::memory_order_relaxed);
}

}  // namespace PelmoraLib
