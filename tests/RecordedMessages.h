// A message handler for tests: keeps every text in order.
#pragma once

#include "torvelan/Messages.h"

#include <algorithm>
#include <string>
#include <vector>

class RecordedMessages final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override {
        levels.push_back(level);
        texts.emplace_back(text.view());
    }
    void clear() {
        levels.clear();
        texts.clear();
    }

    std::ptrdiff_t count(MessageLevel level) const { return std::count(levels.begin(), levels.end(), level); }
    std::string last() const { return texts.empty() ? std::string() : texts.back(); }

    std::vector<MessageLevel> levels;
    std::vector<std::string> texts;
};
