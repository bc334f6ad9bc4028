// LibrarySession - one InitPelmora .. ClosePelmora span with 24-byte result
// records, and the configuration loaded and compiled into it. The library is
// a process-wide singleton: one session at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace PelmoraTool {

class LibrarySession {
public:
    LibrarySession(int players, const std::vector<int32_t>& joints, bool worker);
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;

    // Throws std::runtime_error when the file does not load or compile,
    // after showing the library's messages on standard error.
    void LoadAndCompile(const std::string& configPath);

    // Loads and compiles; false at the first step that fails.
    bool Load(const std::string& configPath);
    bool Compile();

private:
    static void ShowLines(const std::vector<std::string>& lines);
};

}  // namespace PelmoraTool
