// A writer of PSpice data files of all generations, for tests.
#pragma once

#include "ImportFixture.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

// Bytes one behind the other, integers little-endian.
class Bytes {
public:
    template <class T> Bytes & put(T value) {
        char room[sizeof value];
        std::memcpy(room, &value, sizeof value);
        content.append(room, sizeof room);
        return *this;
    }
    Bytes & u8(unsigned value) { return put(static_cast<std::uint8_t>(value)); }
    Bytes & u16(unsigned value) { return put(static_cast<std::uint16_t>(value)); }
    Bytes & u32(std::uint64_t value) { return put(static_cast<std::uint32_t>(value)); }
    Bytes & floats(std::initializer_list<float> values) {
        for (float const value : values) put(value);
        return *this;
    }
    Bytes & doubles(std::initializer_list<double> values) {
        for (double const value : values) put(value);
        return *this;
    }
    Bytes & text(std::string_view value) { // with its zero
        content += value;
        return u8(0);
    }
    Bytes & filler(std::size_t n) {
        content.append(n, '\xAA');
        return *this;
    }
    Bytes & raw(std::string_view bytes) {
        content += bytes;
        return *this;
    }

    std::string content;
};

inline std::string pspiceStart(unsigned marker) {
    return Bytes().raw("\xFF\xFF\xFF\xFF\xFF\xFF").u8(7).u8(marker).content;
}

// A file of the flat layout; each part has a sound default.
struct PSpiceFlatFile {
    unsigned marker = 0xF3;
    std::string title = "a circuit", date = "a day", dropped = "what nobody reads";
    unsigned kind = 1;
    unsigned vectorCount = 2;
    std::vector<std::string> names = {"Time", "V(out)"};
    std::vector<std::vector<float>> points = {{0, 1.5F}, {1, 2.5F}};

    bool is51() const { return marker == 0xF6; }
    bool is404() const { return marker == 0xF4; }

    std::string header() const {
        Bytes out;
        out.raw(pspiceStart(marker));
        if (is51()) out.filler(2);
        out.text(title).filler(1).text(dropped).text(date).filler(4).text(dropped).filler(1).filler(4);
        if (is51()) out.text(dropped);
        out.filler(2).u16(kind);
        if (is404()) out.filler(2).text(dropped);
        out.filler(is404() ? 12 : 10).u16(vectorCount).filler(2).filler(4).filler(4).filler(is51() ? 9 : 3);
        for (std::string const & name : names) out.text(name);
        if (is51()) out.filler(1);
        return out.content;
    }
    std::string content() const {
        Bytes out;
        out.raw(header());
        for (std::vector<float> const & point : points) {
            for (float const value : point) out.put(value);
            if (is51()) out.filler(1);
        }
        return out.content;
    }
};

// A file of the record layout.
class PSpiceRecordsFile {
public:
    explicit PSpiceRecordsFile(bool wideFrames = false) : wide(wideFrames) { out.raw(pspiceStart(wide ? 0xF9 : 0xF8)); }

    std::size_t frameBytes() const { return wide ? 13 : 9; }
    PSpiceRecordsFile & frame(char type, std::uint32_t left, std::uint64_t size) {
        out.u8(static_cast<unsigned char>(type)).u32(left);
        if (wide) out.u32(77);
        out.u32(size);
        return *this;
    }
    PSpiceRecordsFile & first(std::size_t bodyBytes = 5) {
        frame('I', 1, frameBytes() + bodyBytes);
        out.filler(bodyBytes);
        return *this;
    }
    PSpiceRecordsFile & header(std::vector<std::string> const & entries) {
        Bytes body;
        for (std::string const & entry : entries) body.text(entry);
        frame('H', 1, frameBytes() + body.content.size());
        out.raw(body.content);
        return *this;
    }
    PSpiceRecordsFile & names(std::initializer_list<char const *> texts) {
        frame('N', 1, 0);
        for (char const * text : texts) out.text(text);
        return *this;
    }
    PSpiceRecordsFile & sweep(std::initializer_list<double> values, std::uint32_t left = 0) {
        frame('S', left, frameBytes() + 8 * values.size());
        out.doubles(values);
        return *this;
    }
    // Of this record a frame of 8 bytes is counted.
    PSpiceRecordsFile & analysis(std::initializer_list<float> values, std::uint32_t left = 0) {
        frame('A', left, 8 + 4 * values.size());
        out.floats(values);
        return *this;
    }
    std::string const & content() const { return out.content; }

    bool wide;
    Bytes out;
};

class PSpiceFixture : public ImportFixture {
protected:
    bool open(std::string_view content) { return ImportFixture::open(content, DATA_PSPICE); }
    bool open(PSpiceFlatFile const & file) { return open(file.content()); }
    bool open(PSpiceRecordsFile const & file) { return open(file.content()); }
    void expectRefused(std::string_view content) {
        ImportFixture::expectRefused(content, DATA_PSPICE, "PSpice data file read failed because of incorrect format");
    }
    void expectRefused(PSpiceFlatFile const & file) { expectRefused(file.content()); }
    void expectRefused(PSpiceRecordsFile const & file) { expectRefused(file.content()); }
    bool openAnything(std::string_view content) { return ImportFixture::openAnything(content, DATA_PSPICE); }
};
