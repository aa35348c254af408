// Standard output for data, standard error for words.
#pragma once

#include "torvelan/Messages.h"

#include <string>
#include <string_view>
#include <vector>

void writeOut(std::string_view text);
void writeError(std::string_view text);
// "error: text", on standard error; printed text of the engine goes to standard output as it is.
void writeMessage(MessageLevel level, std::string_view text, std::string_view location = {});
// Writes out what is pending; `status`, or exitOutput with a message when standard output could not take all.
int finishOutput(int status);

char const * levelName(MessageLevel level); // "error", "warning", "info"

// Shows messages at once. While a subject is set, normally a file, they begin with it unless they name it themselves. A
// location, "script:line", stands ahead of the level.
class ConsoleMessages final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override;
    void setSubject(std::string subject) { subject_ = std::move(subject); }
    void setLocation(std::string location) { location_ = std::move(location); }
    std::string const & location() const noexcept { return location_; }

private:
    std::string subject_, location_;
};

// Keeps messages for later.
class RecordedMessages final : public MessageHandler {
public:
    struct Message {
        MessageLevel level;
        std::string text;
    };

    void finalOutput(MessageLevel level, YString const & text) override;
    std::vector<Message> const & list() const noexcept { return list_; }

private:
    std::vector<Message> list_;
};
