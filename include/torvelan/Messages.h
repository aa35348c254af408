// MessageHandler: the one way by which words reach the user.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/YString.h"

#include <string_view>

// One argument of a message format. Holds a view of a text: it must outlive the call, as a temporary of it does.
class TORVELAN_API PrintfArg {
public:
    enum class Kind : unsigned char { none, integer, real, text };

    PrintfArg() noexcept = default;
    PrintfArg(int v) noexcept : kind(Kind::integer), integer(v) {}
    PrintfArg(unsigned v) noexcept : kind(Kind::integer), integer(v) {}
    PrintfArg(long v) noexcept : kind(Kind::integer), integer(v) {}
    PrintfArg(long long v) noexcept : kind(Kind::integer), integer(v) {}
    PrintfArg(unsigned long v) noexcept : kind(Kind::integer), integer(static_cast<long long>(v)) {}
    PrintfArg(double v) noexcept : kind(Kind::real), real(v) {}
    PrintfArg(char const * v) noexcept : kind(Kind::text), text(v != nullptr ? v : "") {}
    PrintfArg(std::string_view v) noexcept : kind(Kind::text), text(v) {}
    PrintfArg(YString const & v) noexcept : kind(Kind::text), text(v.view()) {}

    Kind kind = Kind::none;
    long long integer = 0;
    double real = 0;
    std::string_view text;
};

enum class MessageLevel : unsigned char { error, warning, info, print };

// Receives the messages of the library. Derive from it and override finalOutput to show them. Formats are printf forms
// of the library's own (%s, %d, %g and their kin, each checked against the kind of its argument); texts from outside
// are only ever arguments.
class TORVELAN_API MessageHandler {
public:
    virtual ~MessageHandler();

    void error(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {}, PrintfArg d = {});
    void warning(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {}, PrintfArg d = {});
    void info(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {}, PrintfArg d = {});
    void printf(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {}, PrintfArg d = {});

    // A formatted message on its way; hands it to finalOutput unless overridden.
    virtual void output(MessageLevel level, YString const & text);
    // The end of the way.
    virtual void finalOutput(MessageLevel level, YString const & text) = 0;

protected:
    // False when the words would be discarded anyway, so that they need not be formatted.
    virtual bool wantsMessages() const noexcept { return true; }

private:
    void send(MessageLevel level, char const * format, PrintfArg const (&args)[4]);
};

// Discards all.
class TORVELAN_API NullMessageHandler final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override;

protected:
    bool wantsMessages() const noexcept override { return false; }
};

// A printf form applied to typed arguments, in the C locale. A directive whose argument is missing or of another kind
// is copied as it stands; widths and precisions are at most 4096.
TORVELAN_API YString formatMessage(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {},
                                   PrintfArg d = {});

// Report of a broken internal assumption; the caller goes on. Used with "Error found in module %s, line %d".
TORVELAN_API void internal_error(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {},
                                 PrintfArg d = {});
// Report at start-up of a condition that is not a user's error.
TORVELAN_API void tv_error(char const * format, PrintfArg a = {}, PrintfArg b = {}, PrintfArg c = {}, PrintfArg d = {});

// Where internal_error and tv_error go: the handler that the host's "getDefaultMessageHandler" gives (see Host.h), else
// standard error. Never null.
TORVELAN_API YRef<MessageHandler> defaultMessageHandler();
