#include "FileForm.h"

#include "FileLines.h"

#include "torvelan/YString.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

// What stands at the front of a file, and how long it is.
struct Head {
    std::string bytes;
    std::uintmax_t fileSize = 0;

    bool startsWith(std::string_view mark) const { return std::string_view(bytes).starts_with(mark); }
    unsigned word(std::size_t at) const {
        return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1]))
                                                           << 8;
    }
};

Head readHead(std::istream & in) {
    constexpr std::size_t headBytes = std::size_t{64} << 10;
    Head head;
    head.bytes.resize(headBytes);
    in.read(head.bytes.data(), static_cast<std::streamsize>(headBytes));
    head.bytes.resize(static_cast<std::size_t>(in.gcount()));
    in.clear();
    in.seekg(0, std::ios::end);
    head.fileSize = static_cast<std::uintmax_t>(in.tellg());
    in.seekg(0);
    return head;
}

std::vector<std::string> firstLines(Head const & head, std::size_t most) {
    std::istringstream in(head.bytes);
    std::vector<std::string> lines;
    for (std::string line; lines.size() < most && readLine(in, line);) lines.push_back(line);
    return lines;
}

bool isPrintable(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return byte < ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\f';
    });
}

bool isNative(Head const & head) {
    return head.startsWith(std::string_view("\x11\0\0\0Torvelan datafile", 21));
}

bool isPSpice(Head const & head) {
    return head.startsWith("\xFF\xFF\xFF\xFF\xFF\xFF");
}

bool isCsdf(Head const & head) {
    auto const words = wordsOf(head.bytes, " \t\r\n=;:/");
    return !words.empty() && equalNoCase(words.front(), "#H");
}

// Texts of so many bytes each, which are filled up with blanks or NULs.
bool arePrintableFields(std::string_view fields, std::size_t width) {
    for (; !fields.empty(); fields.remove_prefix(std::min(width, fields.size()))) {
        std::string_view const field = fields.substr(0, width);
        std::string_view const text = field.substr(0, field.find('\0'));
        if (!isPrintable(text) || field.find_first_not_of('\0', text.size()) != field.npos) return false;
    }
    return true;
}

// A printable title, date and time, at least one variable, the known format, printable names, and room for them.
bool isSpice2(Head const & head) {
    constexpr std::size_t titleBytes = 80, dates = 96, names = 100, nameBytes = 8;
    if (head.bytes.size() < names + nameBytes) return false;
    std::string_view const bytes = head.bytes;
    std::uintmax_t const variables = head.word(dates);
    return variables != 0 && head.word(98) == 4 && names + nameBytes * variables <= head.fileSize &&
           bytes[names] > ' ' && arePrintableFields(bytes.substr(0, titleBytes), titleBytes) &&
           arePrintableFields(bytes.substr(titleBytes, dates - titleBytes), nameBytes) &&
           arePrintableFields(bytes.substr(names, nameBytes * variables), nameBytes);
}

bool isCount(std::string const & line) {
    auto const words = wordsOf(line, " \t\r");
    return !words.empty() && words[0].find_first_not_of("0123456789") == std::string_view::npos;
}

// Three lines of words, two counts, and lines that say what the columns are.
bool isQuadrel(Head const & head) {
    auto const lines = firstLines(head, 6);
    if (lines.size() < 6 || !isCount(lines[3]) || !isCount(lines[4])) return false;
    auto const words = wordsOf(lines[5], " \t\r(),");
    constexpr std::string_view kinds[] = {"V", "I", "TIME", "FREQUENCY"};
    return words.size() > 1 && std::any_of(std::begin(kinds), std::end(kinds),
                                           [&](std::string_view kind) { return equalNoCase(words[1], kind); });
}

bool beginsWithNumber(std::string const & line) {
    auto const words = wordsOf(line, " ,\t\r");
    if (words.empty()) return false;
    std::string_view const first = words[words.size() > 1 && words[0] == "(" ? 1 : 0];
    auto const digits = first.find_first_not_of("+-.(");
    return digits != std::string_view::npos && digits < 3 && first[digits] >= '0' && first[digits] <= '9';
}

// Nothing but text, of which some line is numbers.
bool isTextTable(Head const & head) {
    if (!isPrintable(head.bytes)) return false;
    auto const lines = firstLines(head, 1000);
    return std::any_of(lines.begin(), lines.end(), beginsWithNumber);
}

// Up to "Variables:" there are lines with a key and blank ones only, and both counts are among them.
bool readSpice3Header(std::istream & in, std::string & line) {
    int counts = 0;
    while (readLine(in, line)) {
        if (isKey(line, {"Variables"})) return counts == 2;
        if (keyOf(line).empty() && line.find_first_not_of(" \t\r") != std::string::npos) return false;
        if (isKey(line, {"No. Variables", "No. Points"})) ++counts;
    }
    return false;
}

FileForm spice3Form(std::istream & in) {
    std::string line;
    if (!readSpice3Header(in, line)) return FileForm::unknown;
    while (readLine(in, line))
        if (isKey(line, {"Binary"}))
            return FileForm::spice3Binary;
        else if (isKey(line, {"Values"}))
            break;
    return FileForm::spice3;
}

// Whether what stands before a colon is the key that each header ends with, and nothing else on its line.
bool endsInVariables(std::string_view text) {
    constexpr std::string_view key = "variables";
    std::string line(text.substr(text.rfind('\n') + 1));
    std::erase(line, '\r');
    auto const words = wordsOf(line, " \t:");
    return words.size() == 1 && equalNoCase(words.front(), key);
}

struct FormRow {
    FileForm form;
    char const * description;
    bool (*test)(Head const & head); // null: not by the head alone
};

constexpr FormRow formRows[] = {
    {FileForm::native, "a native data file", isNative},
    {FileForm::pspice, "a PSpice data file", isPSpice},
    {FileForm::csdf, "a CSDF file", isCsdf},
    {FileForm::spice3, "a SPICE3 raw file (ASCII)", nullptr},
    {FileForm::spice3Binary, "a SPICE3 raw file in the binary form", nullptr},
    {FileForm::spice2, "a SPICE2 raw file", isSpice2},
    {FileForm::quadrel, "a Quadrel data file", isQuadrel},
    {FileForm::text, "a text table", isTextTable},
    {FileForm::unknown, "of no known type", nullptr},
    {FileForm::unreadable, "not readable", nullptr},
};

} // namespace

char const * describe(FileForm form) noexcept {
    return std::find_if(std::begin(formRows), std::end(formRows),
                        [form](FormRow const & row) { return row.form == form; })
        ->description;
}

FileForm fileForm(std::string const & path) {
    std::ifstream in(path, std::ios::binary);
    in.peek();
    if (in.bad() || !in.is_open()) return FileForm::unreadable; // a folder opens, but cannot be read
    in.clear();
    Head const head = readHead(in);
    for (FormRow const & row : formRows) {
        if (row.form == FileForm::spice3) {
            if (FileForm const form = spice3Form(in); form != FileForm::unknown) return form;
        } else if (row.test != nullptr && row.test(head)) {
            return row.form;
        }
    }
    return FileForm::unknown;
}

int countDataSets(std::string const & path) {
    constexpr std::size_t pieceBytes = std::size_t{1} << 20, mostLooked = 256;
    std::ifstream in(path, std::ios::binary);
    std::string piece;
    int count = 0;
    while (in) {
        std::size_t const kept = piece.size();
        piece.resize(kept + pieceBytes);
        in.read(piece.data() + kept, pieceBytes);
        piece.resize(kept + static_cast<std::size_t>(in.gcount()));
        for (auto colon = piece.find(':', kept); colon != std::string::npos; colon = piece.find(':', colon + 1)) {
            std::size_t const looked = std::min(colon, mostLooked);
            if (endsInVariables(std::string_view(piece).substr(colon - looked, looked))) ++count;
        }
        piece.erase(0, piece.size() - std::min(piece.size(), mostLooked));
    }
    return count;
}
