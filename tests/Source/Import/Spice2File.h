// Writer of SPICE2 raw files.
#pragma once

#include "torvelan/Complex.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

// The parts of a file, each with a sound default. Texts are cut or padded with blanks.
struct Spice2File {
    std::string title = "an amplifier";
    std::string date = "05/06/78", time = "09:10:11";
    std::optional<std::uint16_t> count; // of variables; by default that of the names
    std::uint16_t format = 4, mode = 0;
    std::vector<std::string> names = {"time", "12", "vin"};
    std::string values; // as reals() or pairs() make them

    static std::string reals(std::vector<double> const & numbers) { return bytesOf(numbers); }
    static std::string pairs(std::vector<std::pair<float, float>> const & numbers) {
        std::vector<float> parts;
        for (auto const & [re, im] : numbers) parts.insert(parts.end(), {re, im});
        return bytesOf(parts);
    }

    std::string header() const {
        std::string text = padded(title, 80) + padded(date, 8) + padded(time, 8);
        text += word(count.value_or(static_cast<std::uint16_t>(names.size()))) + word(format);
        for (std::string const & name : names) text += padded(name, 8);
        return text + word(mode) + std::string(4 * names.size() + 22, '\x55');
    }
    std::string text() const { return header() + values; }

private:
    static std::string padded(std::string text, std::size_t n) {
        text.resize(n, ' ');
        return text;
    }
    static std::string word(std::uint16_t value) {
        return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
    }
    template <class T> static std::string bytesOf(std::vector<T> const & numbers) {
        return {reinterpret_cast<char const *>(numbers.data()), numbers.size() * sizeof(T)};
    }
};
