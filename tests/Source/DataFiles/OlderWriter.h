// Files of the versions before streams, written as those versions did.
#pragma once

#include "Dfs/LittleEndian.h"
#include "torvelan/Vectors.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

struct OlderVector {
    std::string name;
    std::vector<double> values;
    std::vector<std::int64_t> divisions;
};

class OlderWriter {
public:
    explicit OlderWriter(std::string const & version_, int code_) : code(code_) {
        counted("Torvelan datafile");
        counted(version_);
    }

    // The place of the next group is entered when that begins.
    void group(std::string const & name, std::vector<OlderVector> const & vectors,
               std::string const & reference = "time") {
        if (code > 10) {
            auto const here = static_cast<std::int32_t>(bytes.size());
            if (link != 0) storeNumber(bytes.data() + link, here);
            link = bytes.size();
            number(std::int32_t{0});
        }
        for (std::string const & text : {std::string("plot hdr"), std::string("Title"), std::string("Date"), name})
            string(text);
        if (code > 10) string("#");
        if (code >= 40) number(std::int64_t{0});
        auto const count = static_cast<int>(vectors.size());
        if (code < 41)
            number(static_cast<std::uint16_t>(count));
        else
            number(std::int32_t{count});
        for (OlderVector const & vector : vectors) {
            number(std::uint16_t{1});
            number(std::uint16_t{8});
            named(vector, PT_VOLTAGE);
            named({reference, vector.values, vector.divisions}, PT_TIME);
        }
    }

    std::string bytes;

private:
    template <class Number> void number(Number value) {
        char raw[sizeof value];
        storeNumber(raw, value);
        bytes.append(raw, sizeof raw);
    }
    void wide(std::int64_t value) { code >= 60 ? number(value) : number(static_cast<std::int32_t>(value)); }
    void counted(std::string const & text) {
        number(static_cast<std::int32_t>(text.size()));
        bytes += text;
    }
    void string(std::string const & text) {
        if (code >= 45) return counted(text);
        number(static_cast<std::uint16_t>(text.size()));
        bytes += text;
    }
    void named(OlderVector const & vector, PhysType type) {
        number(static_cast<std::uint16_t>(type));
        wide(++lastData);
        string("VecData");
        number(std::uint16_t{VD_REAL});
        wide(static_cast<std::int64_t>(vector.values.size()));
        std::string raw(vector.values.size() * sizeof(double), '\0');
        if (!raw.empty()) std::memcpy(raw.data(), vector.values.data(), raw.size());
        block(raw);
        if (code >= 40) {
            OlderWriter table("", code);
            table.bytes.clear();
            for (std::int64_t offset : vector.divisions) table.wide(offset);
            block(table.bytes);
            number(std::uint8_t{0});
            wide(0);
            wide(-1);
        }
        string(vector.name);
    }
    void header(std::int64_t next, std::int64_t blockBytes, std::int64_t total) {
        if (code < 40) {
            number(static_cast<std::int32_t>(next));
            number(static_cast<std::int32_t>(blockBytes));
            number(std::int32_t{0});
            number(static_cast<std::int32_t>(total));
            return;
        }
        number(next);
        number(std::int64_t{0});
        wide(blockBytes);
        wide(total);
    }
    void block(std::string const & raw) {
        std::int64_t const headerBytes = code < 40 ? 16 : code < 60 ? 24 : 32;
        auto const size = static_cast<std::int64_t>(raw.size());
        header(0, headerBytes + size, size);
        bytes += raw;
    }

    int code;
    std::size_t link = 0;
    std::int64_t lastData = 0;
};
