// Configuration documents through the C interface: what loading declares and
// keeps, what compiling puts into every player's tables, the exact lines both
// print, and documents made to break the parser.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "config/FunctionConfig.h"
#include "config/GestureConfigManager.h"
#include "config/QualificationConfig.h"
#include "config/XmlText.h"
#include "engine/Pelmora.h"
#include "gesture/GestureTable.h"
#include "pelmora.h"
#include "processing/ProcessingTable.h"
#include "support/Param.h"
#include "support/Printed.h"
#include "support/TestClock.h"
#include "values/IdentifyValues.h"

using namespace PelmoraLib;
using PelmoraTest::Param;
using PelmoraTest::Printed;

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// Counts allocations down to a std::bad_alloc: at -1 nothing fails, at n the
// allocation after the next n throws (once).
std::atomic<long> g_FailAfter{-1};

void* Allocate(size_t size) {
    if (g_FailAfter.load() >= 0 && g_FailAfter.fetch_sub(1) == 0) throw std::bad_alloc();
    if (void* block = malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(size_t size) { return Allocate(size); }
void* operator new[](size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }
void operator delete[](void* block, size_t) noexcept { free(block); }

namespace {

std::string Repeat(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

std::string Doc(const std::string& body) { return "<AppConfig>" + body + "</AppConfig>"; }

// The reference example of the document format, attributes in single quotes.
const char* const kExample =
    "<?xml version=\"1.0\"?>\n"
    "<AppConfig>\n"
    "  <IdentfyValues>\n"
    "    <Value type='float' name='HandDistance'>0</Value>\n"
    "    <Value type='vector3' name='HandOffset'/>\n"
    "  </IdentfyValues>\n"
    "  <Processing update='1'>\n"
    "    <Function name='SUB' return='@HandOffset' value1='@P_RightHand' value2='@P_Head'/>\n"
    "    <Function name='length' return='@HandDistance' value1='@HandOffset'/>\n"
    "  </Processing>\n"
    "  <Gesture name='HandOutAndBack'>\n"
    "    <Segment><Qualification QualificationEnum='Greate' value1='@HandDistance' value2='0.5'/></Segment>\n"
    "    <Segment><Qualification QualificationEnum='ELess' value1='@HandDistance' value2='0.2'/></Segment>\n"
    "  </Gesture>\n"
    "</AppConfig>\n";

// The lines of a processing block and of a gesture that compile.
std::string ProcessingCompiled(int index) {
    const std::string i = std::to_string(index);
    return "Begin To Compiler Processing Index:" + i + "\nCompiler Processing Index:" + i + " Succeed\n";
}
std::string GestureCompiled(const std::string& name) {
    return "Gesture:" + name + " Begin to Compiler\nGesture:" + name + " Compiler Succeed!\n";
}

const std::string kExampleCompiled = ProcessingCompiled(0) + GestureCompiled("HandOutAndBack");
const std::string kAllSucceed = "All GestureConfig Compiler Succeed!!\n";

class ConfigTest : public testing::Test {
protected:
    void Init(int players = 1) {
        GestureConfigParam param = Param(players, m_Types, 2);
        EXPECT_EQ(Printed([&] { InitPelmora(&param); }), "");
    }
    void TearDown() override { Printed(ClosePelmora); }

    // Loads a document from memory, expecting `loaded`; returns what it printed.
    std::string Load(const std::string& xml, bool loaded = true) {
        bool result = !loaded;
        const std::string out = Printed([&] { result = LoadConfigData(xml.c_str()); });
        EXPECT_EQ(result, loaded) << xml.substr(0, 200);
        return out;
    }
    std::string Start(bool compiled) {
        bool result = !compiled;
        const std::string out = Printed([&] { result = StartGestureWork(); });
        EXPECT_EQ(result, compiled);
        return out;
    }
    static IdentifyValues& Pool(int player = 0) { return *Pelmora::Get()->GetIdentifyValue(player); }
    static GestureTable& Gestures(int player = 0) { return *Pelmora::Get()->GetGestureTable(player); }
    static ProcessingTable& Processings(int player = 0) { return *Pelmora::Get()->GetProcessingTable(player); }
    static GestureConfigManager& Manager() { return *GestureConfigManager::Get(); }
    static size_t GestureConfigs() { return Manager().GetGestureConfigTable().GetGestureConfigNum(); }
    static size_t ProcessingConfigs() { return Manager().GetProcessingConfigTable().GetProcessingConfigNum(); }
    static Qualification& QualificationAt(size_t gesture, size_t segment, size_t index = 0) {
        return *Gestures().GetGesture(gesture)->GetSegment(segment)->GetQualification(index);
    }

    int32_t m_Types[2] = {PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND};
};

TEST_F(ConfigTest, HandOutAndBackExampleCompilesAndIsRecognised) {
    PelmoraTest::TestClock clock(1000);
    Init();
    EXPECT_EQ(Load(kExample), "");
    EXPECT_STREQ(GetLastConfigError(), "");
    EXPECT_EQ(Start(true), kExampleCompiled + kAllSucceed);

    EXPECT_EQ(Pool().GetValueIndex("HandDistance"), 52u);
    EXPECT_EQ(Pool().GetValueIndex("HandOffset"), 53u);
    EXPECT_EQ(Processings().GetProcessingNum(), 1u);
    EXPECT_EQ(Processings().GetFrameProcessingNum(), 1u);
    ASSERT_EQ(GetGestureNum(0), 1u);
    EXPECT_EQ(Gestures().GetGesture(size_t(0))->GetSegmentSize(), 2u);
    EXPECT_EQ(QualificationAt(0, 0).GetKind(), Qualification::Greate);
    EXPECT_EQ(QualificationAt(0, 1).GetKind(), Qualification::ELess);

    SetPlayerImmediate(0, true);
    SetPlayerGestureImmediateFromName(0, "HandOutAndBack", true);
    // Right hand this far from the head, 10 ms apart; the first frame only
    // starts the velocity history. Records: finished, gesture, segment,
    // succeeded, gesture time, segment time.
    const struct {
        float distance;
        std::vector<int32_t> record;
    } steps[] = {{0.3f, {}},
                 {0.3f, {0, 0, 0, 0, 20, 20}},   // not out yet: waits in segment 0
                 {0.6f, {0, 0, 0, 1, 30, 30}},   // out
                 {0.4f, {0, 0, 1, 0, 40, 10}},   // not back yet
                 {0.1f, {1, 0, 1, 1, 50, 20}},   // back: finished, restarts
                 {0.6f, {0, 0, 0, 1, 10, 10}}};  // out again
    for (const auto& step : steps) {
        clock.Advance(10);
        const Point3 frame[2] = {{0.0f, 1.0f, 2.0f}, {step.distance, 1.0f, 2.0f}};
        PelmoraResult24 records[1] = {};
        uint32_t count = 0;
        const bool fresh = UpdateSketonDataImmediate(0, frame, 2, records, &count);
        SCOPED_TRACE(step.distance);
        ASSERT_EQ(fresh, !step.record.empty());
        if (!fresh) continue;
        ASSERT_EQ(count, 1u);
        const PelmoraResult24& r = records[0];
        EXPECT_EQ((std::vector<int32_t>{r.finished, r.gestureIndex, r.segmentIndex, r.succeeded, r.gestureTimeMs,
                                        r.segmentTimeMs}),
                  step.record);
    }
    EXPECT_FLOAT_EQ(*Pool().GetValue("HandDistance")->GetValue().f, 0.6f);
}

TEST_F(ConfigTest, SectionsStartAtTheFirstAppConfig) {
    Init();
    // Empty, and none at all: loaded, nothing declared, an empty compile.
    EXPECT_EQ(Load("<AppConfig/>"), "");
    EXPECT_EQ(Load("<Other><IdentfyValues><Value type='int' name='A'/></IdentfyValues><Gesture name='G'/></Other>"),
              "");
    EXPECT_EQ(Pool().GetValueCount(), 52u);
    EXPECT_EQ(GestureConfigs() + ProcessingConfigs(), 0u);
    EXPECT_EQ(Start(true), kAllSucceed);
    EXPECT_EQ(GetGestureNum(0) + Processings().GetProcessingNum(), 0u);
    // Two roots and a stranger after them are all read; what precedes the first root is not.
    EXPECT_EQ(Load("<Before><Gesture name='Z'/></Before>" + Doc("<Gesture name='A'/><Unknown/>") +
                   Doc("<Gesture name='B'/>") + "<Extra><Gesture name='C'/></Extra>"),
              "");
    EXPECT_EQ(Start(true), GestureCompiled("A") + GestureCompiled("B") + GestureCompiled("C") + kAllSucceed);
    EXPECT_EQ(GetGestureNum(0), 3u);
}

TEST_F(ConfigTest, LoadingTwiceDoublesEverythingForEveryPlayer) {
    Init(2);
    EXPECT_EQ(Load(kExample), "");
    EXPECT_EQ(Load(kExample), "");  // the repeated value names are refused silently
    const std::string player = ProcessingCompiled(0) + ProcessingCompiled(1) + Repeat(GestureCompiled("HandOutAndBack"), 2);
    EXPECT_EQ(Start(true), Repeat(player, 2) + kAllSucceed);
    for (int player = 0; player < 2; ++player) {
        EXPECT_EQ(Pool(player).GetValueCount(), 54u);
        EXPECT_EQ(Processings(player).GetProcessingNum(), 2u);
        EXPECT_EQ(GetGestureNum(player), 2u);
        EXPECT_EQ(GetGestureIndex(player, "HandOutAndBack"), 1u);  // the later one takes the name
    }
    EXPECT_NE(Pool(0).GetValue("HandDistance"), Pool(1).GetValue("HandDistance"));
}

TEST_F(ConfigTest, UnknownValueTypeEndsOnlyItsBlock) {
    Init(2);
    EXPECT_EQ(Load(Doc("<IdentfyValues><Value type='int' name='A'>7</Value><Value type='Double' name='B'/>"
                       "<Value type='int' name='C'/></IdentfyValues>"
                       "<IdentfyValues><Value type='VECTOR3' name='D'>1,2,3</Value><Value name='E'/>"
                       "<Value type='float' name='F'/></IdentfyValues>")),
              "double type is undefine value type!!\ndouble type is undefine value type!!\n"
              " type is undefine value type!!\n type is undefine value type!!\n");
    for (int player = 0; player < 2; ++player) {
        IdentifyValues& pool = Pool(player);
        EXPECT_EQ(*pool.GetValue("A")->GetValue().i, 7);
        const float* d = pool.GetValue("D")->GetValue().v3;
        EXPECT_EQ(std::vector<float>(d, d + 3), (std::vector<float>{1, 2, 3}));
        EXPECT_FALSE(pool.HasValues("B") || pool.HasValues("C") || pool.HasValues("E") || pool.HasValues("F"));
    }
}

TEST_F(ConfigTest, FunctionFaultsAreFoundWhenCompiling) {
    const std::pair<const char*, const char*> cases[] = {
        {"name='SET' return='1' value1='2'", "Function return value not found\n"},
        {"name='SET' return='@Nope' value1='2'", "Nope is a undefine value!\nFunction return value not found\n"},
        {"name='ADD' return='@A' value1='1' value2='2' value3='3'", ""},
        {"name='LENGTH' return='@A' value2='@V'", ""},  // no value1: no operands at all
        {"name='LENGTH' return='@A' value1='@Nope'", "Nope is a undefine value!\nFunction param value not found\n"},
        {"name='DISTANCE' return='@A' value1='@Nope' value2='@V'",
         "Nope is a undefine value!\nFunction param 0 value not found\n"},
        {"name='DISTANCE' return='@A' value1='@V' value2='@Nope'",
         "Nope is a undefine value!\nFunction param 1 value not found\n"},
        {"name='Lenght' return='@A' value1='@V'", "LENGHT is not been define in this version!!\n"},
        {"name='CROSS' return='@A' value1='@V' value2='@V'", "Function version not supported\n"},
    };
    const std::string values =
        "<IdentfyValues><Value type='float' name='A'/><Value type='vector3' name='V'/></IdentfyValues>";
    for (const auto& [function, message] : cases) {
        SCOPED_TRACE(function);
        Init();
        Load(Doc(values + "<Processing update='1'><Function " + function + "/></Processing>"));
        EXPECT_EQ(Start(false), "Begin To Compiler Processing Index:0\n" + std::string(message) +
                                    "Function Compiler Failed! Index:0\nProcessing Index:0 Compiler Failed!\n");
        EXPECT_EQ(Processings().GetProcessingNum(), 0u);
        Printed(ClosePelmora);
    }
    // Any letter case compiles, and the record keeps the keyword upper-cased.
    Init();
    Load(Doc(values));
    FunctionConfig function{"lEnGtH", "@A", {"@V"}};
    EXPECT_NE(std::unique_ptr<BaseFunction>(function.Compiler(0)), nullptr);
    EXPECT_EQ(function.m_Keyword, "LENGTH");
}

// Loading and compiling without a singleton, or for a player without values,
// print the located line of their own site and give nothing.
TEST_F(ConfigTest, MissingPiecesAreLocatedAtEachSite) {
    FunctionConfig function{"SET", "@A", {"1"}};
    QualificationConfig qualification;
    GestureConfigManager* manager = GestureConfigManager::Create();
    const auto missing = [](const std::string& singleton, const std::string& site, int line) {
        return singleton + "::Instance do not been created before calling get function.\nPelmoraLib::" + site +
               " line: " + std::to_string(line) + " Error: " + singleton + "::Instance is NULL\n";
    };
    const std::string noPool = "PlayerIndex:1 is out of range in GetIdentifyValue\nPelmoraLib::";
    const std::vector<std::pair<std::function<void()>, std::string>> rows = {
        {[&] { EXPECT_FALSE(manager->LoadFromMemory("<AppConfig/>")); },
         missing("Pelmora", "GestureConfigManager::LoadFromDoc", 79)},
        {[&] { EXPECT_FALSE(manager->Compiler()); }, missing("Pelmora", "GestureConfigManager::Compiler", 57)},
        {[&] { EXPECT_EQ(function.Compiler(0), nullptr); }, missing("Pelmora", "FunctionConfig::Compiler", 62)},
        {[&] { EXPECT_EQ(qualification.Compiler(0), nullptr); },
         missing("Pelmora", "QualificationConfig::Compiler", 66)},
        {[] { Pelmora::Create(); }, ""},
        {[&] { EXPECT_FALSE(manager->LoadFromMemory("<AppConfig/>")); },
         missing("PlayerManager", "GestureConfigManager::LoadFromDoc", 81)},
        {[&] { EXPECT_FALSE(manager->Compiler()); }, missing("PlayerManager", "GestureConfigManager::Compiler", 58)},
        {[&] { EXPECT_EQ(function.Compiler(1), nullptr); },
         noPool + "FunctionConfig::Compiler line: 64 Error: IdentifyValues is NULL\n"},
        {[&] { EXPECT_EQ(qualification.Compiler(1), nullptr); },
         noPool + "QualificationConfig::Compiler line: 68 Error: IdentifyValues is NULL\n"},
    };
    for (size_t row = 0; row < rows.size(); ++row) {
        SCOPED_TRACE("row " + std::to_string(row));
        EXPECT_EQ(Printed(rows[row].first), rows[row].second);
    }
}

TEST_F(ConfigTest, FailingProcessingIsLeftOutWhileTheOthersGoIn) {
    Init();
    EXPECT_EQ(Load(Doc("<IdentfyValues><Value type='float' name='A'/></IdentfyValues>"
                       "<Processing update='0'><Function name='set' return='@A' value1='1'/></Processing>"
                       "<Processing><Function name='SET' return='@A' value1='1'/><Function value1='1'/></Processing>"
                       "<Processing update='1'><Function name='SET' return='@A'/></Processing>"
                       "<Processing update='true'><Function name='ABS' return='@A' value1='-2'/></Processing>"
                       "<Processing update='-1'/>")),
              "");  // the block with a nameless function is dropped silently
    EXPECT_EQ(ProcessingConfigs(), 4u);
    EXPECT_EQ(Start(false), ProcessingCompiled(0) +
                                "Begin To Compiler Processing Index:1\nFunction Compiler Failed! Index:0\n"
                                "Processing Index:1 Compiler Failed!\n" + ProcessingCompiled(2) + ProcessingCompiled(3));
    EXPECT_EQ(Processings().GetProcessingNum(), 3u);
    EXPECT_EQ(Processings().GetFrameProcessingNum(), 1u);  // only "-1": "0" and "true" read as false
}

TEST_F(ConfigTest, QualificationFaultsFailTheirGestureForEveryPlayer) {
    Init(2);
    const char* const ok = "<Qualification QualificationEnum='Less' value1='@P_Head.x' value2='@A'/>";
    EXPECT_EQ(Load(Doc(std::string("<IdentfyValues><Value type='float' name='A'/></IdentfyValues>") +
                       "<Gesture name='Missing'><Segment>" + ok +
                       "<Qualification QualificationEnum='Less' value1='@Nope'/></Segment></Gesture>"
                       "<Gesture name='Good'><Segment/><Segment>" + ok + "</Segment></Gesture>"
                       "<Gesture name='Unknown'><Segment><Qualification QualificationEnum='Greater' value1='1' "
                       "value2='2'/></Segment></Gesture>"
                       "<Gesture name='LowerCase'><Segment><Qualification QualificationEnum='greate'/></Segment>"
                       "</Gesture>"
                       "<Gesture name='WholeVector'><Segment>" + ok +
                       "</Segment><Segment><Qualification QualificationEnum='Greate' value1='@P_Head' "
                       "value2='0.5'/></Segment></Gesture>"
                       "<Gesture name='Dropped'><Segment><Qualification value1='1' value2='1'/></Segment></Gesture>")),
              "");
    EXPECT_EQ(GestureConfigs(), 5u);
    std::string expected;
    for (const std::string player : {"0", "1"}) {
        const auto failed = [&](const std::string& name, int index, const std::string& segment,
                                const std::string& qualification, const std::string& message) {
            expected += "Gesture:" + name + " Begin to Compiler\n" + message + "PlayerIndex: " + player +
                        " Qualification Index " + qualification + " Compiler Failed!\nPlayerIndex:" + player +
                        " Gesture:" + name + " Segment " + segment + " Compiler Failed!\nGesture Compiler failed! "
                        "Index == " + std::to_string(index) + "\n";
        };
        failed("Missing", 0, "0", "1", "Nope is a undefine value!\nQualification param 0 value not found\n");
        expected += GestureCompiled("Good");
        failed("Unknown", 2, "0", "0", "Qualification version not supported.\n");
        failed("LowerCase", 3, "0", "0", "Qualification version not supported.\n");
        failed("WholeVector", 4, "1", "0", "Qualification version not supported.\n");
    }
    EXPECT_EQ(Start(false), expected);
    for (int player = 0; player < 2; ++player) {
        ASSERT_EQ(GetGestureNum(player), 1u);
        EXPECT_STREQ(GetGestureName(player, 0), "Good");
    }
    EXPECT_EQ(Gestures().GetGesture(size_t(0))->GetSegment(0)->GetQualificationNum(), 0u);
    EXPECT_EQ(QualificationAt(0, 1).GetKind(), Qualification::Less);
}

TEST_F(ConfigTest, FlagsAndNamesAreReadAsWritten) {
    Init();
    EXPECT_EQ(Load(Doc("<Gesture name='G'><Segment><Qualification QualificationEnum='Equal' value1='1' value2='1' "
                       "IsFinishOnSucceed='true' IsResetOnFailed='2'/></Segment></Gesture>"
                       "<Gesture name='G'><Segment><Qualification QualificationEnum='Equal' value1='1' value2='1' "
                       "IsFinishOnSucceed='-1' IsResetOnFailed='0'/></Segment><Segment/></Gesture>"
                       "<Gesture Name='X'/>")),
              "");
    EXPECT_EQ(Start(true), Repeat(GestureCompiled("G"), 2) + GestureCompiled("") + kAllSucceed);
    ASSERT_EQ(GetGestureNum(0), 3u);
    EXPECT_EQ(GetGestureIndex(0, "G"), 1u);  // duplicate names: the later one is found by name
    EXPECT_EQ(Gestures().GetGesture(size_t(0))->GetSegmentSize(), 1u);
    EXPECT_EQ(GetGestureIndex(0, "X"), PELMORA_NO_GESTURE);  // "Name" is not "name"
    EXPECT_EQ(GetGestureIndex(0, ""), 2u);
    EXPECT_FALSE(QualificationAt(0, 0).IsFinishOnSucceed());  // the word true reads as 0
    EXPECT_TRUE(QualificationAt(0, 0).IsResetOnFailed());
    EXPECT_TRUE(QualificationAt(1, 0).IsFinishOnSucceed());
    EXPECT_FALSE(QualificationAt(1, 0).IsResetOnFailed());
}

TEST_F(ConfigTest, ParseErrorsAreDescribedAndNothingIsKept) {
    Init();
    EXPECT_EQ(Load(Doc("\n<Gesture name='A'>\n  <Segment/>\n"), false), "Loading XMLData failed!\n");
    EXPECT_STREQ(GetLastConfigError(), "Error reading end tag. (row 4, column 1)");
    EXPECT_EQ(GestureConfigs(), 0u);
    EXPECT_EQ(Load("", false), "Loading XMLData failed!\n");
    EXPECT_STREQ(GetLastConfigError(), "Error document empty. (row 0, column 0)");
    EXPECT_EQ(Load(Doc("<Gesture name='A'/>")), "");
    EXPECT_STREQ(GetLastConfigError(), "");
    EXPECT_EQ(GestureConfigs(), 1u);
}

TEST_F(ConfigTest, FilesAreReadLikeMemoryText) {
    Init();
    char directory[] = "/tmp/pelmora-config-XXXXXX";
    ASSERT_NE(mkdtemp(directory), nullptr);
    const std::string good = std::string(directory) + "/example.xml";
    const std::string bad = std::string(directory) + "/bad.xml";
    const std::string cut = std::string(directory) + "/cut.xml";
    const auto write = [](const std::string& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    };
    std::string crlf;
    for (const char* c = kExample; *c; ++c) crlf += *c == '\n' ? std::string("\r\n") : std::string(1, *c);
    write(good, crlf);
    write(bad, "<AppConfig>\r\n\r<Gesture>\r\n</AppConfig>");  // CR LF and a lone CR: one line each
    // The text ends at its first NUL, even where a lead byte before it would
    // carry the parser on.
    write(cut, std::string("<?xml version='1.0'?><AppConfig>\xC3\0<Gesture/></AppConfig>", 56));

    EXPECT_EQ(Printed([&] { EXPECT_TRUE(LoadConfigFile(good.c_str())); }), "");
    EXPECT_STREQ(GetLastConfigError(), "");
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(LoadConfigFile(bad.c_str())); }), "Loading " + bad + " failed!\n");
    EXPECT_STREQ(GetLastConfigError(), "Error reading end tag. (row 4, column 1)");
    EXPECT_EQ(Printed([&] { EXPECT_FALSE(LoadConfigFile(cut.c_str())); }), "Loading " + cut + " failed!\n");
    for (const std::string& path : {std::string(directory), std::string(directory) + "/none.xml"}) {
        EXPECT_EQ(Printed([&] { EXPECT_FALSE(LoadConfigFile(path.c_str())); }), "Loading " + path + " failed!\n");
        EXPECT_EQ(std::string(GetLastConfigError()).rfind("Failed to open file", 0), 0u) << GetLastConfigError();
    }
    EXPECT_EQ(Start(true), kExampleCompiled + kAllSucceed);  // only the good file was kept
    for (const std::string& path : {good, bad, cut}) unlink(path.c_str());
    rmdir(directory);
}

TEST_F(ConfigTest, DeepOrCrowdedElementsAreRefusedBeforeParsing) {
    Init();
    const int depth = XmlText::kMaxDepth;
    const auto nested = [](int levels, const std::string& open, const std::string& inside = "") {
        return Repeat(open + inside, levels) + Repeat("</a>", levels);
    };
    EXPECT_EQ(Load(Doc(nested(depth - 1, "<a x='>'>"))), "");
    EXPECT_EQ(Load(Doc("<!--" + nested(depth, "<a>") + "--><![CDATA[" + nested(depth, "<a>") + "]]>")), "");
    const std::string refused =
        "Configuration refused: Elements nested deeper than 128 levels.\nLoading XMLData failed!\n";
    EXPECT_EQ(Load(Doc(nested(depth, "<a x='>'>")), false), refused);
    EXPECT_STREQ(GetLastConfigError(), "Elements nested deeper than 128 levels.");
    // What looks like an end tag but is read by the parser as something else
    // must not pay for more depth.
    const std::string utf8 = "<?xml version=\"1.0\"?>";
    const std::string sneaky[] = {
        Repeat("</x>", depth) + Doc(nested(depth, "<a>")),      // an unknown node outside every element
        utf8 + Doc(nested(depth, "<a>", "\xC3</a>")),           // a UTF-8 lead byte swallows the '<'
        utf8 + Doc(nested(depth, "<a x='\xC3'></a>'>")),        // ... or the closing quote
        Doc(nested(depth, "<a>", "&#x</a>x1;")),                // a character reference runs to its ';'
        Doc(nested(depth, "<a>", "<?xml version='>></a>'?>")),  // a declaration's value may hold '>'
        Repeat("<a>", 1000000)};
    for (const std::string& text : sneaky) EXPECT_EQ(Load(text, false), refused) << text.substr(0, 60);

    std::string attributes;
    for (int i = 0; i < XmlText::kMaxAttributes; ++i) attributes += " a" + std::to_string(i) + "='1'";
    EXPECT_EQ(Load(Doc("<Gesture" + attributes + "/>")), "");
    EXPECT_EQ(Load(Doc("<Gesture" + attributes + " b='1'/>"), false),
              "Configuration refused: An element carries more than 256 attributes.\nLoading XMLData failed!\n");
}

TEST_F(ConfigTest, OversizedAndTruncatedTextsNeverCrash) {
    Init();
    const std::string name(XmlText::kMaxValueLength, 'n');
    EXPECT_EQ(Load(Doc("<Gesture name='" + name + "'/>")), "");
    EXPECT_EQ(Load(Doc("<Gesture name='" + name + "'/><Value name='&lt;" + name + "'/>"), false),
              "Configuration refused: An attribute value is longer than 1024 bytes.\nLoading XMLData failed!\n");
    EXPECT_EQ(Load(Doc("<Gesture name='" + std::string(4 << 20, 'n') + "'/>"), false),
              "Configuration refused: An attribute value is longer than 1024 bytes.\nLoading XMLData failed!\n");

    std::string many = "<IdentfyValues><Value type='float' name='A'/></IdentfyValues>";
    for (int i = 0; i < 3000; ++i)
        many += "<Gesture name='G" + std::to_string(i) +
                "'><Segment><Qualification QualificationEnum='Less' value1='@GestureTime' value2='@A'/></Segment>"
                "</Gesture>";
    EXPECT_EQ(Load(Doc(many)), "");
    EXPECT_TRUE(Start(true).size() > 3000 * 40);
    ASSERT_EQ(GetGestureNum(0), 3001u);
    EXPECT_EQ(std::string(GetGestureName(0, 0)), name);
    EXPECT_EQ(GetGestureIndex(0, "G2999"), 3000u);

    // Texts that end inside a multi-byte sequence: the parser steps over the
    // whole sequence. The limit check reads exactly what the parser reads, so
    // the sanitizer build would catch a step past the padded text.
    for (const char* text : {"<?xml version=\"1.0\"?><a>x\xF3", "<?xml version=\"1.0\"?><a b='\xF3",
                             "<\xF0\x9F", "<AppConfig>\xE2\x82", "<AppConfig>&#x\xF3"}) {
        EXPECT_EQ(Load(text, false), "Loading XMLData failed!\n");
    }
}

TEST_F(ConfigTest, RunningOutOfMemoryNeverThrowsOutOfTheLibrary) {
#if defined(__SANITIZE_ADDRESS__)
    __lsan::ScopedDisabler leaksAllowed;  // the parser does not free what it held when new threw
#endif
    for (long n = 0;; ++n) {
        SCOPED_TRACE(n);
        Init();
        bool loaded = false, started = false, failed = false;
        const std::string out = Printed([&] {
            g_FailAfter = n;
            loaded = LoadConfigData(kExample);
            started = StartGestureWork();
            failed = g_FailAfter.exchange(-1) < 0;
        });
        Printed(ClosePelmora);
        if (!failed) {
            EXPECT_TRUE(loaded && started);
            EXPECT_EQ(out, kExampleCompiled + kAllSucceed);
            break;
        }
        EXPECT_FALSE(loaded && started);
        EXPECT_NE(out.find(" Error: std::bad_alloc\n"), std::string::npos) << out;
    }
}

}  // namespace
