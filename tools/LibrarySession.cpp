#include "tools/LibrarySession.h"

#include <iostream>
#include <stdexcept>

#include "pelmora.h"
#include "tools/CompileLog.h"
#include "tools/ConfigDocument.h"
#include "tools/StdoutCapture.h"

namespace PelmoraTool {

LibrarySession::LibrarySession(int players, const std::vector<int32_t>& joints, bool worker) {
    std::vector<int32_t> types = joints;
    GestureConfigParam param{};
    param.IsUseSubThread = worker ? 1 : 0;
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = players;
    param.SkeletonNum = static_cast<int32_t>(types.size());
    param.SkeletonTypeArray = types.data();
    param.VelocityFrameNum = 2;
    param.VelocityMulType = PELMORA_VELOCITY_EQUAL;
    InitPelmora(&param);
}

LibrarySession::~LibrarySession() {
    ClosePelmora();
    SetTimeSource(nullptr, nullptr);
}

bool LibrarySession::Load(const std::string& configPath) { return LoadConfigFile(configPath.c_str()); }

bool LibrarySession::Compile() { return StartGestureWork(); }

// The library's progress lines are of no interest; when loading or compiling
// fails, its other lines go to standard error ahead of the error.
void LibrarySession::LoadAndCompile(const std::string& configPath) {
    StdoutCapture capture;
    if (!Load(configPath)) {
        const std::optional<ConfigNote> problem = ConfigDocument::ByteProblem(configPath);
        const std::string error = problem ? problem->text : GetLastConfigError();
        ShowLines(capture.Lines());
        throw std::runtime_error(configPath + " does not load: " + error + " (pelmora check " + configPath +
                                 " tells more)");
    }
    if (!Compile()) {
        ShowLines(capture.Lines());
        throw std::runtime_error(configPath + " does not compile (pelmora check " + configPath + " tells why)");
    }
}

void LibrarySession::ShowLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        if (!CompileLog::IsProgress(line)) std::cerr << line << '\n';
    }
}

}  // namespace PelmoraTool
