// Fuzzes the tool's readers of recordings: the native format, read whole
// through RecordingReader, and the three importers writing through
// RecordingWriter. A refusal is a
// std::runtime_error; anything else escaping, a crash or a hang is a finding.
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>

#include "tools/Importers.h"
#include "tools/RecordingReader.h"

namespace {

void ReadNative(const std::string& text) {
    std::istringstream in(text);
    try {
        PelmoraTool::RecordingReader reader(in, "fuzz");
        reader.Summarise();
    } catch (const std::runtime_error&) {
    }
}

void Import(const std::string& format, const std::string& text) {
    std::istringstream in(text);
    std::ostringstream native;
    PelmoraTool::RecordingWriter writer(native);
    try {
        PelmoraTool::Importers::Import(format, in, writer);
    } catch (const std::runtime_error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    ReadNative(text);
    for (const std::string& format : PelmoraTool::Importers::Formats()) Import(format, text);
    return 0;
}
