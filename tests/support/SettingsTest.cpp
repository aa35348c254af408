#include "support/Settings.h"

#include "torvelan/Host.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

MakeOption const stored("SettingsTestStored", "default", OptionPersistence::stored, __FILE__, __LINE__);
MakeOption const ofSession("SettingsTestSession", "default", OptionPersistence::session, __FILE__, __LINE__);

class Settings : public testing::Test {
protected:
    Settings() {
        std::string pattern = (fs::temp_directory_path() / "settings-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        path = YString((folder / "settings.ini").string());
    }
    ~Settings() override {
        support_OpenSettings("");
        fs::remove_all(folder);
    }
    std::string content() const {
        std::ifstream in(std::string(path), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void write(std::string const & text) { std::ofstream(std::string(path), std::ios::binary) << text; }
    static std::string setting(YString const & section, YString const & key) {
        YString value("(none)");
        cfgman_GetConfigSetting(section, key, &value);
        return std::string(value);
    }

    fs::path folder;
    YString path;
};

} // namespace

TEST_F(Settings, KeepTextsBySectionAndKey) {
    ASSERT_TRUE(openSettings(path));
    EXPECT_FALSE(fs::exists(std::string(path))) << "nothing is written before there is something";
    EXPECT_TRUE(cfgman_WriteConfigSetting("Colours", "Grid", "grey"));
    EXPECT_TRUE(cfgman_WriteConfigSetting("colours", "axis", "black"));
    EXPECT_EQ(setting("COLOURS", "GRID"), "grey");
    EXPECT_EQ(setting("Colours", "nothing"), "(none)");
    EXPECT_EQ(setting("nothing", "grid"), "(none)");
    YList<YString> keys;
    cfgman_GetConfigKeyNames("Colours", &keys);
    EXPECT_EQ(keys, (YList<YString>{"axis", "Grid"}));
    EXPECT_EQ(content(), "[Colours]\naxis=black\nGrid=grey\n");
    EXPECT_TRUE(cfgman_DeleteConfigSection("colours"));
    EXPECT_EQ(setting("Colours", "Grid"), "(none)");
    EXPECT_EQ(cfgman_GetBaseConfigLocation().getString(), path);
}

TEST_F(Settings, AreForTheUserAlone) {
    openSettings(path);
    cfgman_WriteConfigSetting("s", "k", "v");
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(Settings, AnyTextComesBackAsItWas) {
    openSettings(path);
    for (char const * text :
         {"", " ", "a=b", "=", "[x]", "]", "#", "\\", "\\n", "line\nline\r\n\t", "%s", "\xFF\xC3"}) {
        for (char const * other : {"plain", text}) {
            ASSERT_TRUE(cfgman_WriteConfigSetting(text, other, text));
            EXPECT_EQ(setting(text, other), text);
            ASSERT_TRUE(cfgman_WriteConfigSetting(other, text, text));
            EXPECT_EQ(setting(other, text), text);
        }
    }
}

TEST_F(Settings, OddLinesArePassedOver) {
    write("no section=1\n[a\n[s]\nnothing\n=empty\nk=v\r\n[[x]]\n\n[s]\nlast");
    ASSERT_TRUE(openSettings(path));
    EXPECT_EQ(setting("s", "k"), "v\r");
    EXPECT_EQ(setting("s", ""), "empty");
    EXPECT_EQ(setting("", "no section"), "(none)");
}

TEST_F(Settings, WhatIsNoFileIsRefused) {
    EXPECT_FALSE(openSettings(YString(folder.string())));
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(openSettings(YString((folder / "pipe").string())));
    EXPECT_FALSE(openSettings(YString(std::string_view("a\0b", 3))));
    write("x");
    fs::resize_file(std::string(path), std::uintmax_t{1} << 40);
    EXPECT_FALSE(openSettings(path));
    EXPECT_FALSE(cfgman_WriteConfigSetting("s", "k", "v")) << "no store is open";
    EXPECT_EQ(cfgman_GetBaseConfigLocation().getString(), YString());
}

TEST_F(Settings, AFileThatCannotBeReplacedStaysAsItWas) {
    YString const missing((folder / "missing/settings.ini").string());
    ASSERT_TRUE(openSettings(missing));
    EXPECT_FALSE(cfgman_WriteConfigSetting("s", "k", "v"));
}

TEST_F(Settings, ProcessesDoNotLoseEachOthersChanges) {
    constexpr int processes = 4, writes = 25;
    for (int p = 0; p < processes; ++p) {
        if (fork() != 0) continue;
        bool good = openSettings(path);
        for (int i = 0; i < writes; ++i) {
            YString const key(std::to_string(p) + "." + std::to_string(i));
            good = good && cfgman_WriteConfigSetting("s", key, key);
        }
        _exit(good ? 0 : 1);
    }
    for (int p = 0; p < processes; ++p) {
        int code = -1;
        wait(&code);
        EXPECT_EQ(code, 0);
    }
    openSettings(path);
    YList<YString> keys;
    cfgman_GetConfigKeyNames("s", &keys);
    EXPECT_EQ(keys.size(), static_cast<std::size_t>(processes * writes));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2) << "the file and its lock";
}

TEST_F(Settings, StoredOptionsOutliveTheProcess) {
    write("[Options]\nsettingsteststored=from before\nUnregistered=7\n");
    ASSERT_TRUE(support_OpenSettings(path));
    EXPECT_EQ(sp_GetStringOption("SettingsTestStored"), YString("from before"));
    EXPECT_EQ(sp_GetIntOption("Unregistered"), 7);
    sp_SetOption("SettingsTestStored", "now");
    sp_SetOption("SettingsTestSession", "now");
    EXPECT_EQ(setting("Options", "SettingsTestStored"), "now");
    EXPECT_EQ(setting("Options", "SettingsTestSession"), "(none)");
    support_OpenSettings("");
    sp_SetOption("SettingsTestStored", "later");
    ASSERT_TRUE(support_OpenSettings(path));
    EXPECT_EQ(sp_GetStringOption("SettingsTestStored"), YString("now"));
}
