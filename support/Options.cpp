#include "support/NumberText.h"
#include "support/Settings.h"
#include "torvelan/Host.h"
#include "torvelan/Messages.h"

#include <array>
#include <fast_float/fast_float.h>
#include <optional>
#include <unordered_map>

namespace {

constexpr char optionSection[] = "Options";

struct Option {
    YString value;
    YString defaultValue;
    OptionPersistence persistence = OptionPersistence::session;
    char const * file = nullptr; // where it was registered; null for one that was only set
    int line = 0;
};

struct HashName {
    std::size_t operator()(YString const & name) const noexcept { return name.hashValue(); }
};
struct EqualName {
    bool operator()(YString const & a, YString const & b) const noexcept { return equalNoCase(a, b); }
};
using Table = std::unordered_map<YString, Option, HashName, EqualName>;

// Built on first use by a static initialiser; never destroyed, since options are still read at shut-down.
Table & table() {
    static auto & options = *new Table;
    return options;
}

// An option may be set before the module that registers it is loaded: what was set stays.
void registerOption(char const * name, YString const & defaultValue, OptionPersistence persistence, char const * file,
                    int line) {
    auto const [entry, isNew] = table().try_emplace(name, Option{defaultValue, defaultValue, persistence, file, line});
    Option & option = entry->second;
    if (isNew) return;
    if (option.file != nullptr) {
        if (!(option.defaultValue == defaultValue))
            internal_error("Option %s has two defaults. Error found in module %s, line %d", name, file, line);
        return;
    }
    option.defaultValue = defaultValue;
    option.persistence = persistence;
    option.file = file;
    option.line = line;
}

std::optional<YString> findOption(char const * name, bool * found) {
    auto const entry = table().find(name);
    bool const exists = entry != table().end();
    if (found != nullptr) *found = exists;
    return exists ? std::optional(entry->second.value) : std::nullopt;
}

// The whole text as a number, 0 when it is none.
template <class Number> Number wholeNumber(std::optional<YString> const & text) {
    if (!text) return 0;
    std::string_view const digits = text->view();
    char const * const end = digits.data() + digits.size();
    Number value{};
    if constexpr (std::is_integral_v<Number>) {
        auto const result = std::from_chars(digits.data(), end, value);
        return result.ec == std::errc() && result.ptr == end ? value : 0;
    } else {
        auto const result = fast_float::from_chars(digits.data(), end, value);
        return result.ec == std::errc() && result.ptr == end ? value : 0;
    }
}

bool meansTrue(std::string_view text) {
    static constexpr std::array<std::string_view, 4> words = {"true", "on", "yes", "1"};
    for (std::string_view const word : words)
        if (equalNoCase(text, word)) return true;
    return false;
}

} // namespace

MakeOption::MakeOption(char const * name, char const * defaultValue, OptionPersistence persistence, char const * file,
                       int line) {
    registerOption(name, defaultValue, persistence, file, line);
}

MakeOption::MakeOption(char const * name, int defaultValue, OptionPersistence persistence, char const * file,
                       int line) {
    registerOption(name, YString(defaultValue), persistence, file, line);
}

MakeOption::MakeOption(char const * name, bool defaultValue, OptionPersistence persistence, char const * file,
                       int line) {
    registerOption(name, defaultValue ? "true" : "false", persistence, file, line);
}

MakeOption::MakeOption(char const * name, double defaultValue, OptionPersistence persistence, char const * file,
                       int line) {
    registerOption(name, YString(defaultValue), persistence, file, line);
}

YString sp_GetStringOption(char const * name, bool * found) {
    return findOption(name, found).value_or(YString());
}

int sp_GetIntOption(char const * name, bool * found) {
    return wholeNumber<int>(findOption(name, found));
}

bool sp_GetBoolOption(char const * name, bool * found) {
    return meansTrue(findOption(name, found).value_or(YString()));
}

double sp_GetDoubleOption(char const * name, bool * found) {
    return wholeNumber<double>(findOption(name, found));
}

void sp_SetOption(char const * name, YString const & value) {
    Option & option = table()[name];
    option.value = value;
    if (option.persistence == OptionPersistence::stored) cfgman_WriteConfigSetting(optionSection, name, value);
}

bool support_OpenSettings(YString const & path) {
    if (!openSettings(path)) return false;
    YList<YString> names;
    cfgman_GetConfigKeyNames(optionSection, &names);
    for (YString const & name : names) cfgman_GetConfigSetting(optionSection, name, &table()[name].value);
    return true;
}
