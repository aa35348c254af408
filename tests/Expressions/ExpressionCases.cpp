#include "ExpressionCases.h"

#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "VectorText.h"
#include "torvelan/torvelan.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

std::string trimmed(std::string_view text) {
    std::size_t const begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? std::string() : std::string(text.substr(begin));
}

void loadFile(std::filesystem::path const & path, std::vector<ExpressionCase> & cases) {
    std::ifstream in(path);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        std::string const content = trimmed(line);
        if (content.empty() || content[0] == '#') continue;
        if (content.starts_with("case: ")) {
            cases.push_back({path.stem().string(), number, content.substr(6), {}});
        } else {
            if (cases.empty()) throw std::runtime_error("no case yet in " + path.string());
            cases.back().steps.push_back(content);
        }
    }
}

std::string unescaped(std::string text) {
    for (std::size_t at = 0; (at = text.find("\\n", at)) != std::string::npos; ++at) text.replace(at, 2, "\n");
    return text;
}

NameArray words(std::string const & text) {
    NameArray result;
    std::istringstream in(text);
    for (std::string word; in >> word;) result.push_back(YString(word));
    return result;
}

class Runner {
public:
    std::string run(ExpressionCase const & c) {
        for (std::string const & step : c.steps) take(step);
        finishEvaluation();
        return problems_;
    }

private:
    void take(std::string const & step) {
        std::size_t const blank = step.find(' ');
        std::string const word = step.substr(0, blank);
        std::string const rest = blank == std::string::npos ? std::string() : step.substr(blank + 1);
        if (word == "given")
            given(rest);
        else if (word == "over")
            over(rest);
        else if (word == "labels")
            labels(rest);
        else if (word == "alias")
            made().flags |= VF_ALIAS;
        else if (word == "readonly")
            made().flags |= VF_READONLY;
        else if (word == "do")
            (void)vec_Evaluate(static_cast<char **>(nullptr), rest.c_str(), silent_, false, false);
        else if (word == "eval")
            evaluate(rest);
        else if (word == "compare")
            compare(rest);
        else if (word == "=")
            value(rest);
        else if (word == "named")
            named(rest);
        else if (word == "!")
            wantedMessages_.push_back(unescaped(rest));
        else if (word == "fails")
            wantFailure_ = true;
        else
            throw std::runtime_error("unknown step: " + step);
    }

    dvec & made() {
        if (made_ == nullptr) throw std::runtime_error("no vector made yet");
        return *made_;
    }

    Group * groupFor(std::string_view name) {
        if (name.empty()) return nameSpace().global;
        auto found = groups_.find(name);
        if (found != groups_.end()) return found->second;
        Group * group = makeUnlistedGroup(YString(name));
        listRestoredGroup(group, YString(name), true, *messages_);
        groups_.emplace(YString(name), group);
        return group;
    }

    void given(std::string const & text) {
        std::size_t const equals = text.find(" = ");
        if (equals == std::string::npos) throw std::runtime_error("given NAME = VALUES: " + text);
        std::string const fullName = text.substr(0, equals);
        SplitName const split = splitVectorName(fullName);
        made_ = new dvec(YString(split.vector), groupFor(split.group), PT_UNKNOWN);
        fillFromText(*made_, text.substr(equals + 3));
        made_->enterGroup();
    }

    void over(std::string const & text) {
        if (evaluating_) return checkReference(text);
        std::size_t const equals = text.find(" = ");
        NamedVector reference(YString(text.substr(0, equals)));
        fillFromText(reference, text.substr(equals + 3));
        made().ref = reference;
    }

    void labels(std::string const & text) {
        if (!evaluating_) return made().setLabels(words(text), false);
        NameArray found;
        shown().divisionLabels(&found);
        if (!found.compare(words(text))) problem("labels wanted " + text);
    }

    void evaluate(std::string const & expression) {
        finishEvaluation();
        evaluating_ = true;
        expression_ = expression;
        code_ = vec_EvalVecList(expression.c_str(), &values_, context_, YString(), false);
    }

    void compare(std::string const & expression) {
        finishEvaluation();
        evaluating_ = true;
        expression_ = expression;
        char * text = nullptr;
        code_ = vec_Evaluate(&text, expression.c_str(), context_, true, false) == 1 ? VEC_OK : VEC_EXPRESSION_FAILED;
        if (text == nullptr) return;
        dvec * result = new dvec(YString("text"), std::string_view(text), nullptr, PT_UNKNOWN);
        std::free(text);
        values_.push_back(result);
    }

    void value(std::string const & text) {
        ++checked_;
        if (checked_ > values_.size()) return problem("no value " + std::to_string(checked_) + ", wanted " + text);
        std::string const difference = differenceFrom(shown(), text);
        if (!difference.empty()) problem(difference);
    }

    void named(std::string const & text) {
        if (shown().name().view() != text) problem("wanted name " + text + ", found " + std::string(shown().name()));
    }

    void checkReference(std::string const & text) {
        if (text == "nothing") {
            if (shown().ref.totalLength() > 0) problem("wanted no reference, found " + textOf(shown().ref));
            return;
        }
        std::string const difference = differenceFrom(shown().ref, text);
        if (!difference.empty()) problem("reference: " + difference);
    }

    XYVector & shown() {
        if (checked_ == 0 || checked_ > values_.size()) throw std::runtime_error("no value to look at");
        return *values_[checked_ - 1];
    }

    void finishEvaluation() {
        if (!evaluating_) return;
        if (messages_->texts != wantedMessages_)
            problem("messages wanted" + listed(wantedMessages_) + "\n  found" + listed(messages_->texts));
        if (wantFailure_ != (code_ > VEC_NO_GROUP))
            problem(wantFailure_ ? "did not fail" : "failed, code " + std::to_string(code_));
        if (!wantFailure_ && checked_ != values_.size())
            problem(std::to_string(values_.size()) + " values, " + std::to_string(checked_) + " looked at");
        for (XYVector * vector : values_) vec_ReleaseVector(vector);
        values_.clear();
        messages_->clear();
        wantedMessages_.clear();
        wantFailure_ = evaluating_ = false;
        checked_ = 0;
        vec_CollectGarbage();
    }

    static std::string listed(std::vector<std::string> const & texts) {
        std::string all;
        for (std::string const & text : texts) all += "\n    " + text;
        return all;
    }

    void problem(std::string const & text) { problems_ += "  " + expression_ + ": " + text + "\n"; }

    EngineSession session_;
    std::shared_ptr<RecordedMessages> messages_ = std::make_shared<RecordedMessages>();
    ScpParseContext context_{messages_};
    ScpParseContext silent_{nullptr};
    NameTable<Group *> groups_;
    dvec * made_ = nullptr;
    bool evaluating_ = false;
    std::string expression_;
    YArray<XYVector *> values_;
    VEC_ERROR code_ = VEC_OK;
    std::size_t checked_ = 0;
    std::vector<std::string> wantedMessages_;
    bool wantFailure_ = false;
    std::string problems_;
};

} // namespace

std::vector<ExpressionCase> loadExpressionCases(std::string const & folder) {
    std::vector<std::filesystem::path> files;
    for (auto const & entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<ExpressionCase> cases;
    for (auto const & file : files) loadFile(file, cases);
    return cases;
}

std::string runExpressionCase(ExpressionCase const & expressionCase) {
    return Runner().run(expressionCase);
}
