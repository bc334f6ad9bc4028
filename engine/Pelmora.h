// Pelmora - the engine singleton. It owns every player's compiled tables (the
// value pool, the processing table and the gesture table), the queue of
// commands that host threads send to the worker, and the worker thread with
// its wake event and pass-rate meter.
// Thread-safety: Create, Init and Close run on the host's thread.
// m_PelmoraLock guards the command queue. The worker holds the pass lock
// while it evaluates players; host calls that rebuild or evaluate what a
// pass reads hold it too (and m_PelmoraLock first, when they rebuild), so
// they never overlap a pass. The per-player getters only read lists that are
// fixed once Init returns.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "PelmoraExport.h"
#include "engine/CriticalSection.h"
#include "engine/FrameRateCounter.h"
#include "engine/WakeEvent.h"
#include "pelmora.h"

namespace PelmoraLib {

class IdentifyValues;
class ProcessingTable;
class GestureTable;
class ThreadCommand;

// Fixed to the record's 32-bit field: the host may pass any number, and an
// unsupported one must still be storable (and then refused) without UB.
enum eReturnInfoType : int32_t { ReturnInfo8 = 0, ReturnInfo16 = 1, ReturnInfo24 = 2 };

class PELMORA_API Pelmora {
public:
    static CriticalSection m_PelmoraLock;

    static Pelmora* Get();
    // Get, followed when the engine is missing by the calling site's located line.
    static Pelmora* Get(const char* site, int line);
    // The player's value pool; null, after the calling site's located line,
    // when the engine (engineLine) or the pool (poolLine) is missing.
    static IdentifyValues* PlayerValues(int playerIndex, const char* site, int engineLine, int poolLine);
    // The engine or null, without a message.
    static Pelmora* Current() { return ms_Instance.load(std::memory_order_acquire); }
    static Pelmora* Create();
    static void Close();
    static void Lock();
    static void Unlock();

    Pelmora(const Pelmora&) = delete;
    Pelmora& operator=(const Pelmora&) = delete;

    // Builds fresh per-player tables for the record (releasing earlier ones)
    // and starts the worker when the record asks for one.
    void Init(GestureConfigParam& param);

    IdentifyValues* GetIdentifyValue(int playerIndex);
    ProcessingTable* GetProcessingTable(int playerIndex);
    GestureTable* GetGestureTable(int playerIndex);
    int GetPlayerCount() const { return static_cast<int>(m_IdentifyValues.size()); }

    int32_t SubThreadFPS() const { return m_FrameRate.FramesPerSecond(); }
    eReturnInfoType GetReturnInfoType() const { return m_ReturnInfoType; }
    bool IsUseSubThread() const { return m_IsUseSubThread; }

    void ClearIdentify();
    void ClearComilperResult();

    // Wakes the worker for one pass (what OnIdle does).
    void UpdateAll();
    // One worker pass; false ends the worker.
    bool UpdateGestureThread();

    void PushThreadCommand(ThreadCommand* command);
    void ProcessingThreadCommand();

    // Waits for a running pass to end and keeps the next from starting.
    std::unique_lock<std::mutex> HoldPasses() { return std::unique_lock<std::mutex>(m_PassLock); }

protected:
    Pelmora() = default;
    ~Pelmora();

private:
    void StartWorker();
    void StopWorker();
    void ReleaseTables();
    static void WorkerProcedure();

    static std::atomic<Pelmora*> ms_Instance;

    bool m_IsUseSubThread = false;
    eReturnInfoType m_ReturnInfoType = ReturnInfo8;
    std::list<ThreadCommand*> m_Commands;
    std::atomic<bool> m_Running{false};
    std::vector<std::unique_ptr<IdentifyValues>> m_IdentifyValues;
    std::vector<std::unique_ptr<ProcessingTable>> m_ProcessingTables;
    std::vector<std::unique_ptr<GestureTable>> m_GestureTables;
    WakeEvent m_WakeEvent;
    std::mutex m_PassLock;
    std::thread m_Worker;
    FrameRateCounter m_FrameRate;
    uint32_t m_LastPassTime = 0;
};

}  // namespace PelmoraLib
