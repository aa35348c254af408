// Runs the command-line host as a program, in a folder of the test.
#pragma once

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>

using Json = nlohmann::ordered_json;
using Words = std::vector<std::string>;

enum Status { done = 0, wrongUsage = 2, unreadable = 3, failedExpression = 4, unwritable = 5 };

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string quoted(std::string const & word) {
    std::string text = "'";
    for (char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

inline std::string contentOf(std::filesystem::path const & path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class Tvsh : public testing::Test {
protected:
    Tvsh() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tvsh-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~Tvsh() override { std::filesystem::remove_all(folder); }

    Outcome run(Words const & words, std::string const & redirection = "</dev/null") {
        std::string command = inShell + quoted(TVSH_PROGRAM);
        for (std::string const & word : words) command += " " + quoted(word);
        auto const out = folder / "out", err = folder / "err";
        if (redirection.find('>') == std::string::npos) command += " >" + quoted(out);
        int const code = std::system((command + " 2>" + quoted(err) + " " + redirection).c_str());
        return {WIFEXITED(code) ? WEXITSTATUS(code) : -1, contentOf(out), contentOf(err)};
    }

    std::vector<Json> json(Words words, int wantedStatus = done) {
        words.insert(words.begin(), {"eval", "--json"});
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.status, wantedStatus) << outcome.err;
        std::vector<Json> objects;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) objects.push_back(Json::parse(line));
        return objects;
    }

    std::string file(std::string const & name, std::string const & content) {
        std::ofstream(folder / name, std::ios::binary) << content;
        return (folder / name).string();
    }

    // In the folder, by name.
    Words filesNamed(std::string const & beginning) const {
        Words names;
        for (auto const & entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().starts_with(beginning)) names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    static std::string rawHeader(std::string const & flags, int points) {
        return "Title: made by a test\nDate: today\nPlotname: Transient\nFlags: " + flags +
               "\nNo. Variables: 2\nNo. Points: " + std::to_string(points) +
               "\nVariables:\n\t0\ttime\ttime\n\t1\tv(out)\tvoltage\n";
    }
    static std::string rawWithPoints(int points) {
        std::string text = rawHeader("real", points) + "Values:\n";
        for (int i = 0; i < points; ++i) text += std::to_string(i) + "\t" + std::to_string(i) + "\n\t1.5\n";
        return text;
    }
    std::string rawFile() {
        return file("small.raw", rawHeader("real", 3) + "Values:\n 0\t0\n\t1.5\n 1\t1\n\t-2\n 2\t2\n\t4\n");
    }

    std::filesystem::path folder;
    std::string inShell; // commands of the shell that run it
};
