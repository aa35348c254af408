#include "torvelan/Messages.h"
#include "torvelan/Host.h"

#include <gmock/gmock.h>
#include <memory>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

class Recorder : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override {
        messages.emplace_back(level, std::string(text.view()));
    }
    std::vector<std::pair<MessageLevel, std::string>> messages;
};

TEST(MessageHandler, EachLevelArrivesFormatted) {
    Recorder handler;
    handler.error("no %s of index %d", "vector", 3);
    handler.warning("%g", 0.5);
    handler.info("plain");
    handler.printf("%s%s%s%s", "a", "b", "c", "d");
    EXPECT_THAT(handler.messages,
                ElementsAre(Pair(MessageLevel::error, "no vector of index 3"), Pair(MessageLevel::warning, "0.5"),
                            Pair(MessageLevel::info, "plain"), Pair(MessageLevel::print, "abcd")));
}

TEST(MessageHandler, TextsFromOutsideAreNeverFormats) {
    Recorder handler;
    handler.error("%s", YString("%n%s%d"));
    EXPECT_EQ(handler.messages[0].second, "%n%s%d");
}

TEST(MessageHandler, OutputMayRedirect) {
    struct Prefixing : Recorder {
        void output(MessageLevel level, YString const & text) override {
            finalOutput(level, YString::joined("> ", {text}));
        }
    } handler;
    handler.info("x");
    EXPECT_EQ(handler.messages[0].second, "> x");
}

TEST(NullMessageHandler, TakesAnythingSilently) {
    NullMessageHandler handler;
    testing::internal::CaptureStderr();
    handler.error("%s", "x");
    handler.finalOutput(MessageLevel::error, "y");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

YRef<MessageHandler> hostHandler;

YRef<MessageHandler> giveHostHandler() {
    return hostHandler;
}

void offer(YRef<MessageHandler> (*getter)()) {
    MakeDynamicFunction("getDefaultMessageHandler", reinterpret_cast<DynamicFunction>(getter));
}

TEST(DefaultMessageHandler, IsTheHostsWhereItHasOne) {
    auto const recorder = std::make_shared<Recorder>();
    hostHandler = recorder;
    offer(giveHostHandler);
    internal_error("Error found in module %s, line %d", "Vectors.cpp", 12);
    tv_error("Internal Function %s not found.", "f");
    offer(nullptr);
    hostHandler = nullptr;
    EXPECT_THAT(recorder->messages, ElementsAre(Pair(MessageLevel::error, "Error found in module Vectors.cpp, line 12"),
                                                Pair(MessageLevel::error, "Internal Function f not found.")));
}

TEST(DefaultMessageHandler, WritesToStandardErrorWithoutAHost) {
    testing::internal::CaptureStderr();
    internal_error("lost %d", 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "lost 7\n");
}

TEST(DefaultMessageHandler, StandsInForAHostThatGivesNone) {
    offer(giveHostHandler);
    EXPECT_NE(defaultMessageHandler(), nullptr);
    offer(nullptr);
    EXPECT_NE(defaultMessageHandler(), nullptr);
}

} // namespace
