// Runs the built `pelmora` binary: its standard output must carry the tool's
// lines only, whatever the library prints.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

const std::string kData = PELMORA_TOOL_DATA;

struct Outcome {
    int status;
    std::string output;
};

Outcome Command(const std::string& arguments) {
    const std::string command = std::string(PELMORA_TOOL_BINARY) + " " + arguments + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

}  // namespace

TEST(CommandTest, ReplayWritesPureJsonLinesInWorkerMode) {
    const Outcome run = Command("replay " + kData + "/gestures.xml " + kData + "/wave.csv --mode worker --format jsonl --gestures RaiseHand");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output,
              R"({"time_ms":600.0,"frame":6,"player":0,"gesture":"RaiseHand","event":"finished","segment":1,"label":"raise"})"
              "\n");
}

TEST(CommandTest, CheckExitStatusFollowsTheConfiguration) {
    EXPECT_EQ(Command("check " + kData + "/gestures.xml").status, 0);
    const Outcome broken = Command("check " + kData + "/broken.xml");
    EXPECT_EQ(broken.status, 1);
    EXPECT_NE(broken.output.find("broken.xml:22:7: Qualification param 0 value not found\n"), std::string::npos);
}

TEST(CommandTest, ImportWritesTheNativeFile) {
    const std::string output = ::testing::TempDir() + "pelmora_import.csv";
    const Outcome run = Command("import timestamp-csv " + kData + "/timestamp.csv " + output);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, output + ": 2 frames, 2 joints\n");
    std::ifstream written(output);
    std::stringstream text;
    text << written.rdbuf();
    EXPECT_EQ(text.str(),
              "time_ms,player,Head.x,Head.y,Head.z,RightHand.x,RightHand.y,RightHand.z\n"
              "1000.5,0,0.1,1.6,2.2,0.4,1.2,2.1\n"
              "1033.5,0,0.1,1.65,2.2,0.45,1.3,2.1\n");
    EXPECT_NE(Command("import bvh " + kData + "/timestamp.csv " + output).status, 0);
}
