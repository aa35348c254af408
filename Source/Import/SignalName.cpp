#include "Import/SignalName.h"

#include <algorithm>

namespace {

constexpr std::size_t maxName = 256;
constexpr std::size_t maxSuffix = 8;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char firstLetter(std::string_view text) {
    return text.empty() ? '\0' : lower(text.front());
}

SignalName signalOf(std::string_view body, std::string_view suffix, PhysType type) {
    YString const name = YString::joined(YString(body.substr(0, maxName)), {suffix});
    return {YString(name.view().substr(0, maxName)), type};
}

bool hasProbeForm(std::string_view text) {
    return text.size() > 1 && text[1] == '(';
}

std::string_view bestAlternative(std::string_view text) {
    std::string_view const first = text.substr(0, text.find(';'));
    for (std::string_view rest = text;;) {
        std::string_view const alternative = rest.substr(0, rest.find(';'));
        if (hasProbeForm(alternative) && alternative.find(':') == alternative.npos) return alternative;
        if (alternative.size() == rest.size()) return first;
        rest.remove_prefix(alternative.size() + 1);
    }
}

// What is in the parentheses that begin at the front.
std::string_view bodyOf(std::string_view text) {
    text.remove_prefix(1);
    return text.substr(0, text.find(')'));
}

struct ProbeRow {
    char letter;
    std::string_view suffix;
    PhysType type;
};

constexpr ProbeRow probeRows[] = {
    {'v', "", PT_VOLTAGE},   {'i', "#p", PT_CURRENT}, {'w', "#pwr", PT_POWER},
    {'b', "#b", PT_UNKNOWN}, {'h', "#h", PT_UNKNOWN},
};

ProbeRow const * findProbe(std::string_view text) {
    if (!hasProbeForm(text)) return nullptr;
    auto const row = std::find_if(std::begin(probeRows), std::end(probeRows),
                                  [text](ProbeRow const & r) { return r.letter == firstLetter(text); });
    return row != std::end(probeRows) ? row : nullptr;
}

} // namespace

SignalName plainSignalName(std::string_view text) {
    PhysType const type = equalNoCase(text, "time")        ? PT_TIME
                          : equalNoCase(text, "frequency") ? PT_FREQUENCY
                          : firstLetter(text) == 'v'       ? PT_VOLTAGE
                          : firstLetter(text) == 'i'       ? PT_CURRENT
                                                           : PT_UNKNOWN;
    return {YString(text.substr(0, maxName)), type};
}

bool convertSignalName(std::string_view text, SignalName & signal) {
    text = bestAlternative(text);
    if (ProbeRow const * row = findProbe(text)) {
        signal = signalOf(bodyOf(text.substr(1)), row->suffix, row->type);
        return true;
    }
    bool const isCurrent = firstLetter(text) == 'i';
    if (isCurrent) text.remove_prefix(1);
    std::string_view const quantity = text.substr(0, std::min(maxSuffix, text.find('(')));
    text.remove_prefix(quantity.size());
    if (!text.starts_with('(')) return false;
    YString const suffix = YString::joined("#", {quantity});
    signal = signalOf(bodyOf(text), suffix, isCurrent ? PT_CURRENT : PT_UNKNOWN);
    return true;
}
