#include <gtest/gtest.h>

#include <sstream>

#include "tools/ConfigCheck.h"

using namespace PelmoraTool;

namespace {

const std::string kData = PELMORA_TOOL_DATA;

struct Checked {
    int status;
    std::string output;
};

Checked Check(const std::string& name) {
    std::ostringstream out;
    const int status = ConfigCheck::Run(kData + "/" + name, out);
    return {status, out.str()};
}

}  // namespace

TEST(ConfigCheckTest, PlacesEveryLibraryMessageAtItsElement) {
    const Checked checked = Check("broken.xml");
    const std::string file = kData + "/broken.xml";
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.output,
              file + ":6:5: double type is undefine value type!!\n" +
              file + ":9:5: Quaternion is not supported in this version.\n" +
              file + ":14:5: TWIST is not been define in this version!!\n" +
              file + ":14:5: Function Compiler Failed! Index:1\n" +
              file + ":12:3: Processing Index:0 Compiler Failed!\n" +
              file + ":22:7: Speed is a undefine value!\n" +
              file + ":22:7: Qualification param 0 value not found\n" +
              file + ":22:7: PlayerIndex: 0 Qualification Index 1 Compiler Failed!\n" +
              file + ":20:5: PlayerIndex:0 Gesture:Push Segment 1 Compiler Failed!\n" +
              file + ":16:3: Gesture Compiler failed! Index == 0\n" +
              file + ":10:5: value \"Reach\" is already declared: this declaration and the rest of its "
                     "IdentfyValues block are ignored\n" +
              file + ":27:7: Gesture \"Lost\" is ignored: this Qualification has no QualificationEnum attribute\n" +
              file + ": does not compile\n");
}

TEST(ConfigCheckTest, ReportsWhereTheXmlBreaks) {
    const Checked checked = Check("malformed.xml");
    const std::string file = kData + "/malformed.xml";
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.output, file + ":5:3: Error reading end tag.\n" + file + ": does not load\n");
}

TEST(ConfigCheckTest, AcceptsOnlyAWholeConfiguration) {
    const Checked checked = Check("gestures.xml");
    EXPECT_EQ(checked.status, 0);
    EXPECT_EQ(checked.output, kData + "/gestures.xml: compiles: 2 gestures, 1 processing\n");
    EXPECT_EQ(Check("absent.xml").status, 1);
}
