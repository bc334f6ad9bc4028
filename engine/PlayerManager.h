// PlayerManager - the singleton that owns one Player per tracked person,
// gives them their gesture progress once the configuration is compiled, and
// drives every tracked player through one evaluation per worker pass.
// Thread-safety: Init, InitGestureData and Close run on the host's thread
// while no pass runs; afterwards the player list is fixed, so GetPlayer may be
// called from any thread while the worker runs UpdatePlayers.
#pragma once

#include <memory>
#include <vector>

#include "pelmora.h"

namespace PelmoraLib {

class Player;

class PlayerManager {
public:
    static PlayerManager* Create();
    static PlayerManager* Get();
    // Get, followed when the manager is missing by the calling site's located line.
    static PlayerManager* Get(const char* site, int line);
    static void Release();
    static bool Exists() { return ms_Instance != nullptr; }

    void Init(GestureConfigParam param);
    void InitGestureData();
    void UpdatePlayers();
    // Null (after "GetPlayer Index == %d, out of range!") for an index
    // outside 0..count-1.
    Player* GetPlayer(int index);
    // The same without a message, for the calls that stay silent.
    Player* PlayerAt(int index) const;
    int GetPlayerCount() const { return static_cast<int>(m_Players.size()); }
    void Close();

private:
    PlayerManager() = default;
    ~PlayerManager() = default;

    static PlayerManager* ms_Instance;
    std::vector<std::unique_ptr<Player>> m_Players;
};

}  // namespace PelmoraLib
