#include "Import/QuadrelColumn.h"

#include "support/TextScan.h"

#include <algorithm>

namespace {

struct Words {
    static constexpr int most = 5;
    std::string_view text[most];
    int count;

    std::string_view at(int i) const { return i < count ? text[i] : std::string_view(); }
};

Words splitLine(std::string_view line) {
    Words words;
    words.count = std::min(sp_ScanLine(line, " \t\r(),", words.text, Words::most), Words::most);
    return words;
}

// "X$U1.N$OUT" is called "U1.OUT": each part of a hierarchical name may have its kind in front.
YString withoutKinds(std::string_view name) {
    std::string result;
    for (bool isFirst = true, isMore = true; isMore; isFirst = false) {
        std::string_view part = name.substr(0, name.find('.'));
        isMore = part.size() < name.size();
        name.remove_prefix(part.size() + (isMore ? 1 : 0));
        if (part.size() > 1 && part[1] == '$') part.remove_prefix(2);
        if (!isFirst) result += '.';
        result += part;
    }
    return YString(result);
}

QuadrelPart partOf(std::string_view mark) {
    if (equalNoCase(mark, ".REAL")) return QuadrelPart::real;
    return equalNoCase(mark, ".IMAG") ? QuadrelPart::imaginary : QuadrelPart::whole;
}

QuadrelColumn voltage(Words const & words) {
    YString name = withoutKinds(words.at(2));
    if (words.count > 3 && words.at(3) != "0") name = YString::joined("V", {name, "_", withoutKinds(words.at(3))});
    return {name, PT_VOLTAGE, partOf(words.at(4)), {}};
}

QuadrelColumn current(Words const & words) {
    YString const device = withoutKinds(words.at(2));
    return {YString::joined(device, {"#p"}), PT_CURRENT, partOf(words.at(3)), YString::joined(device, {"#n"})};
}

QuadrelColumn time(Words const & words) {
    return {YString(words.at(1)), PT_TIME, QuadrelPart::whole, {}};
}

QuadrelColumn frequency(Words const & words) {
    return {YString(words.at(1)), PT_FREQUENCY, QuadrelPart::whole, {}};
}

struct QuantityRow {
    std::string_view word;
    int leastWords;
    QuadrelColumn (*describe)(Words const & words);
};

constexpr QuantityRow quantityRows[] = {
    {"V", 3, voltage},
    {"I", 3, current},
    {"TIME", 2, time},
    {"FREQUENCY", 2, frequency},
};

} // namespace

bool parseQuadrelColumn(std::string_view line, QuadrelColumn & column) {
    Words const words = splitLine(line);
    for (QuantityRow const & row : quantityRows) {
        if (words.count < row.leastWords || !equalNoCase(row.word, words.at(1))) continue;
        column = row.describe(words);
        return true;
    }
    return false;
}
