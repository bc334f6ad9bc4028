// GestureConfigManager - the singleton that owns the configuration as read
// from XML and compiles it, on request, into every player's processing and
// gesture tables. Loading declares the document's values in every player's
// pool at once; loads accumulate and compiling appends.
// Thread-safety: none; load and compile on the host's thread while no pass
// runs.
#pragma once

#include <memory>
#include <string>

#include "PelmoraExport.h"
#include "config/GestureConfigTable.h"
#include "config/ProcessingConfigTable.h"

class TiXmlDocument;

namespace PelmoraLib {

class PELMORA_API GestureConfigManager {
public:
    static GestureConfigManager* Get();
    // Get, followed when the manager is missing by the calling site's located line.
    static GestureConfigManager* Get(const char* site, int line);
    static GestureConfigManager* Create();
    static void Close();
    // Creates the manager (saying so when it exists) and stores the flag.
    static void Init(bool flag);
    // What went wrong with the last load; empty after a successful one.
    static const char* GetLastError();

    GestureConfigManager(const GestureConfigManager&) = delete;
    GestureConfigManager& operator=(const GestureConfigManager&) = delete;

    bool LoadFromFile(const char* path);
    bool LoadFromMemory(const char* text);
    bool Compiler();
    void Clear();

    ProcessingConfigTable& GetProcessingConfigTable() { return *m_ProcessingConfigs; }
    GestureConfigTable& GetGestureConfigTable() { return *m_GestureConfigs; }

protected:
    GestureConfigManager();
    ~GestureConfigManager();
    bool LoadFromDoc(TiXmlDocument& document);

private:
    bool ParseAndLoad(const std::string& paddedText);

    static GestureConfigManager* ms_Instance;

    bool m_Flag = false;       // kept for hosts; the library never reads it
    std::string m_Text;        // likewise
    std::unique_ptr<ProcessingConfigTable> m_ProcessingConfigs;
    std::unique_ptr<GestureConfigTable> m_GestureConfigs;
};

}  // namespace PelmoraLib
