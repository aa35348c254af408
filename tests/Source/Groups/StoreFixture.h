// A store in a running session. Numbers of group names go on from test to test, so a test asks a group for its name.
#pragma once

#include "Groups/GroupStore.h"
#include "Groups/LoosePool.h"
#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Host.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

using Texts = std::vector<std::string>;

class StoreFixture : public testing::Test {
protected:
    ~StoreFixture() override { sp_SetOption("GroupPersistence", "3"); }

    static dvec * member(Group * group, char const * name, double value = 0) {
        auto * vector = new dvec(name, group, PT_NONE);
        vector->addVal(value);
        vector->enterGroup();
        return vector;
    }
    static dvec * stringMember(Group * group, char const * name, char const * text) {
        auto * vector = new dvec(name, std::string_view(text), group, PT_NONE);
        vector->enterGroup();
        return vector;
    }
    // Local contexts included, newest first, without the global group.
    static Texts listedNames() {
        Texts names;
        forEachGroup([&names](Group const & group) {
            if (!group.isProtected()) names.emplace_back(group.name.view());
        });
        return names;
    }
    static std::string text(YString const & string) { return std::string(string.view()); }
    // Whether reports are exactly one internal error of the store.
    void expectInternalError(char const * module) {
        std::string const beginning = std::string("Error found in module ") + module + ", line ";
        ASSERT_EQ(reports->texts.size(), 1U);
        EXPECT_THAT(reports->texts[0], testing::StartsWith(beginning));
        EXPECT_GT(std::stoi(reports->texts[0].substr(beginning.size())), 0);
        reports->clear();
    }

    std::shared_ptr<RecordedMessages> reports = std::make_shared<RecordedMessages>(); // what belongs to no command
    RecordedMessages messages;
    int deaths = 0; // of watched vectors, some of which live as long as the session
    EngineSession session{reports};
};

// Tells of its end.
class WatchedVector : public dvec {
public:
    WatchedVector(char const * name, Group * home, int * deaths_) : dvec(name, home, PT_NONE), deaths(deaths_) {}
    ~WatchedVector() override { ++*deaths; }

private:
    int * deaths;
};
