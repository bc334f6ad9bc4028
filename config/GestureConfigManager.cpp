#include "config/GestureConfigManager.h"

#include <tinyxml.h>

#include <cstdio>

#include "config/XmlText.h"
#include "engine/Diagnostics.h"
#include "engine/Pelmora.h"
#include "engine/PlayerManager.h"
#include "player/Player.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

GestureConfigManager* GestureConfigManager::ms_Instance = nullptr;

namespace {

std::string g_LastError;

void DescribeParseError(const TiXmlDocument& document) {
    char buffer[512];
    snprintf(buffer, sizeof buffer, "%s (row %d, column %d)", document.ErrorDesc(), document.ErrorRow(),
             document.ErrorCol());
    g_LastError = buffer;
}

}  // namespace

GestureConfigManager::GestureConfigManager()
    : m_ProcessingConfigs(new ProcessingConfigTable()), m_GestureConfigs(new GestureConfigTable()) {}

GestureConfigManager::~GestureConfigManager() { Clear(); }

GestureConfigManager* GestureConfigManager::Get() {
    if (!ms_Instance) printf("GestureConfigManager::Instance do not been created before calling get function.\n");
    return ms_Instance;
}

GestureConfigManager* GestureConfigManager::Get(const char* site, int line) {
    GestureConfigManager* manager = Get();
    if (!manager) Diagnostics::Located(site, line, Diagnostics::kGestureConfigManager);
    return manager;
}

GestureConfigManager* GestureConfigManager::Create() {
    if (ms_Instance) {
        printf("GestureConfigManager::Instance has been created before.\n");
        return ms_Instance;
    }
    ms_Instance = new GestureConfigManager();
    return ms_Instance;
}

void GestureConfigManager::Close() {
    if (!ms_Instance) {
        printf("GestureConfigManager::Instance do not be created do nothing.\n");
        return;
    }
    delete ms_Instance;
    ms_Instance = nullptr;
}

void GestureConfigManager::Init(bool flag) { Create()->m_Flag = flag; }

const char* GestureConfigManager::GetLastError() { return g_LastError.c_str(); }

bool GestureConfigManager::LoadFromFile(const char* path) {
    g_LastError.clear();
    if (!path) {
        g_LastError = "Failed to open file: no path given";
        return false;
    }
    std::string text;
    if (!XmlText::ReadFile(path, text, g_LastError)) return false;
    return ParseAndLoad(text);
}

bool GestureConfigManager::LoadFromMemory(const char* text) {
    g_LastError.clear();
    if (!text) return false;
    return ParseAndLoad(XmlText::Padded(text));
}

bool GestureConfigManager::ParseAndLoad(const std::string& paddedText) {
    if (!XmlText::CheckLimits(paddedText, g_LastError)) {
        printf("Configuration refused: %s\n", g_LastError.c_str());
        return false;
    }
    TiXmlDocument document;
    document.Parse(paddedText.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    if (document.Error()) {
        DescribeParseError(document);
        return false;
    }
    return LoadFromDoc(document);
}

bool GestureConfigManager::LoadFromDoc(TiXmlDocument& document) {
    TiXmlElement* root = document.FirstChildElement("AppConfig");
    Pelmora* engine = Pelmora::Get("PelmoraLib::GestureConfigManager::LoadFromDoc", 79);
    if (!engine) return false;
    PlayerManager* players = PlayerManager::Get("PelmoraLib::GestureConfigManager::LoadFromDoc", 81);
    if (!players) return false;
    const int playerCount = players->GetPlayerCount();
    // "AppConfig" and every top-level element after it are sections alike.
    for (TiXmlElement* section = root; section; section = section->NextSiblingElement()) {
        for (TiXmlElement* child = section->FirstChildElement(); child; child = child->NextSiblingElement()) {
            const std::string name = child->Value();
            if (name == "IdentfyValues") {
                for (int player = 0; player < playerCount; ++player) {
                    IdentifyValues* pool = engine->GetIdentifyValue(player);
                    if (!pool) {
                        printf("LoadFromDoc Error! PlayerIndex:%d out of range!\n", player);
                        continue;
                    }
                    pool->Read(child);
                }
            } else if (name == "Processing") {
                m_ProcessingConfigs->Read(child);
            } else if (name == "Gesture") {
                m_GestureConfigs->Read(child);
            }
        }
    }
    return true;
}

// Both compilers run for every player even after a failure: what compiles
// stays in force.
bool GestureConfigManager::Compiler() {
    Pelmora* engine = Pelmora::Get("PelmoraLib::GestureConfigManager::Compiler", 57);
    if (!engine) return false;
    PlayerManager* players = PlayerManager::Get("PelmoraLib::GestureConfigManager::Compiler", 58);
    if (!players) return false;
    bool result = true;
    for (int player = 0; player < players->GetPlayerCount(); ++player) {
        ProcessingTable* processing = engine->GetProcessingTable(player);
        GestureTable* gestures = engine->GetGestureTable(player);
        result = (processing && m_ProcessingConfigs->Compiler(player, *processing)) && result;
        result = (gestures && m_GestureConfigs->Compiler(player, *gestures)) && result;
    }
    return result;
}

void GestureConfigManager::Clear() {
    m_ProcessingConfigs->Clear();
    m_GestureConfigs->Clear();
}

}  // namespace PelmoraLib
