// The parser recurses once per nesting level, so documents nested deeper than
// the library's limit are refused before parsing: this must hold on a host
// thread with a small stack too.
#include <gtest/gtest.h>
#include <pthread.h>

#include <string>

#include "config/XmlText.h"
#include "pelmora.h"
#include "support/Param.h"

namespace {

std::string Nested(int depth) {
    std::string text = "<AppConfig>";
    for (int level = 1; level < depth; ++level) text += "<Gesture>";
    for (int level = 1; level < depth; ++level) text += "</Gesture>";
    return text + "</AppConfig>";
}

struct Load {
    std::string document;
    bool loaded = false;
};

void* LoadOnThisThread(void* argument) {
    Load* load = static_cast<Load*>(argument);
    int32_t types[] = {1};
    GestureConfigParam param = PelmoraTest::Param(1, types, 1);
    InitPelmora(&param);
    load->loaded = LoadConfigData(load->document.c_str());
    ClosePelmora();
    return nullptr;
}

bool LoadOnSmallStack(const std::string& document) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    Load load{document};
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attributes, &LoadOnThisThread, &load), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return load.loaded;
}

}  // namespace

TEST(SmallStack, DeepestAllowedDocumentLoadsAndDeeperIsRefused) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(LoadOnSmallStack(Nested(PelmoraLib::XmlText::kMaxDepth)));
    EXPECT_FALSE(LoadOnSmallStack(Nested(PelmoraLib::XmlText::kMaxDepth + 1)));
    EXPECT_FALSE(LoadOnSmallStack(Nested(100000)));
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find("Configuration refused: "), std::string::npos) << printed;
}
