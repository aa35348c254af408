#include "Import/Spice3Variables.h"

#include "Groups/Group.h"
#include "Import/Spice3Lines.h"
#include "Import/UniqueNames.h"
#include "support/Streams.h"
#include "support/TextScan.h"

#include <algorithm>

namespace {

struct TypeRow {
    std::string_view word;
    PhysType type;
};

constexpr TypeRow typeRows[] = {
    {"voltage", PT_VOLTAGE},     {"V", PT_VOLTAGE},    {"current", PT_CURRENT},
    {"A", PT_CURRENT},           {"power", PT_POWER},  {"W", PT_POWER},
    {"frequency", PT_FREQUENCY}, {"Hz", PT_FREQUENCY}, {"Hertz", PT_FREQUENCY},
    {"time", PT_TIME},           {"S", PT_TIME},
};

// "v(out)" is the node itself; a voltage between two nodes, or of none, has no name of its own.
YString probeName(std::string_view token) {
    std::string_view parts[3];
    return sp_ScanLine(token, "()", parts, 3) == 2 ? YString(parts[1]) : YString();
}

// "@r1[i]": a parameter of a device.
YString deviceName(std::string_view token) {
    std::string_view parts[3];
    if (sp_ScanLine(token, "[]@", parts, 3) != 2) return {};
    std::string_view const parameter = parts[1] == "i" ? "p" : parts[1] == "p" ? "pwr" : parts[1];
    return YString::joined(YString(parts[0]), {"#", parameter});
}

YString plainName(std::string_view token) {
    std::string name(token);
    std::replace(name.begin(), name.end(), ':', '.');
    return YString(name);
}

// Points for which each vector takes memory ahead: a value needs two bytes of the file at the least.
std::int64_t pointsAhead(tvfstream const & stream, Spice3Header const & header) {
    std::int64_t const rest = static_cast<std::int64_t>(stream.getFileSize()) - stream.tellg();
    std::int64_t const fitting = std::max<std::int64_t>(rest, 0) / 2 / header.numVariables + 1;
    return std::clamp<std::int64_t>(header.numPoints, 0, fitting);
}

// Index, name and type of a line of the list.
struct VariableLine {
    std::string_view words[3];
};

bool readVariableLine(tvfstream & stream, int index, Spice3Line & line, VariableLine & variable) {
    int count = 0;
    while (count == 0) {
        if (!line.read(stream)) return false;
        count = sp_ScanLine(line.text(), " \t\r", variable.words, 3);
    }
    return count >= 3 && variable.words[0] == YString(index).view();
}

class VariableListReader {
public:
    VariableListReader(tvfstream & stream, Group * group, Spice3Header const & header, Spice3Memory memory,
                       MessageHandler & messages)
        : stream_(stream), group_(group), header_(header), messages_(messages), names_(*group),
          bufferBytes_(spice3BufferBytes(header, memory.bufferBytes)),
          capacity_(memory.takeAhead ? pointsAhead(stream, header) : 0) {}

    Spice3Result read(YArray<dvec *> & vectors) {
        for (int i = 0; i < header_.numVariables; ++i) {
            Spice3Result const result = readOne(i, vectors);
            if (result != Spice3Result::done) return result;
        }
        return Spice3Result::done;
    }

private:
    Spice3Result readOne(int index, YArray<dvec *> & vectors) {
        VariableLine variable;
        if (!readVariableLine(stream_, index, line_, variable)) {
            messages_.error("The variable list is incorrectly formatted");
            return Spice3Result::variableListError;
        }
        YString const name = spice3VectorName(variable.words[1], index);
        if (index == 0 && !mayBeReference(name)) return Spice3Result::referenceError;
        vectors.push_back(makeVector(name, spice3PhysType(variable.words[2])));
        vectors.back()->ref = *vectors.front();
        return Spice3Result::done;
    }

    bool mayBeReference(YString const & name) {
        if (header_.sweepVar.empty() || equalNoCase(header_.sweepVar, name)) return true;
        messages_.error("The reference vector, '%s', must be the first in the variable list", header_.sweepVar);
        return false;
    }

    dvec * makeVector(YString const & name, PhysType type) {
        auto * vector = new dvec(names_(name), group_, type);
        vector->allocate(capacity_, header_.isComplex ? VD_COMPLEX : VD_REAL);
        vector->setBufferSize(bufferBytes_);
        vector->enterGroup();
        return vector;
    }

    tvfstream & stream_;
    Group * group_;
    Spice3Header const & header_;
    MessageHandler & messages_;
    UniqueNames names_;
    std::int32_t bufferBytes_; // for each vector
    std::int64_t capacity_;    // points
    Spice3Line line_;
};

} // namespace

YString spice3VectorName(std::string_view token, int index) {
    YString const name = equalNoCase(token.substr(0, 2), "v(") ? probeName(token)
                         : token.starts_with('@')              ? deviceName(token)
                                                               : plainName(token);
    return name.empty() ? YString::joined("$vec#", {YString(index)}) : name;
}

PhysType spice3PhysType(std::string_view word) {
    for (TypeRow const & row : typeRows)
        if (equalNoCase(row.word, word)) return row.type;
    return PT_UNKNOWN;
}

std::int32_t spice3BufferBytes(Spice3Header const & header, std::int32_t budget) {
    std::int64_t const share = budget / header.numVariables;
    if (header.numPoints < 1) return static_cast<std::int32_t>(share);
    std::int64_t const elementBytes = header.isComplex ? 16 : 8;
    std::int64_t const wanted = header.numPoints * elementBytes * 3 / 2;
    return static_cast<std::int32_t>(std::min(share, std::max<std::int64_t>(wanted, 1024)));
}

Spice3Result readSpice3Variables(tvfstream & stream, Group * group, Spice3Header const & header, Spice3Memory memory,
                                 YArray<dvec *> & vectors, MessageHandler & messages) {
    return VariableListReader(stream, group, header, memory, messages).read(vectors);
}
