// The shortest text of a double, kept on the stack.
#pragma once

#include <array>
#include <charconv>
#include <string_view>

class ShortestText {
public:
    explicit ShortestText(double value) noexcept
        : end_(std::to_chars(room_.data(), room_.data() + room_.size(), value).ptr) {}
    ShortestText(ShortestText const &) = delete;
    ShortestText & operator=(ShortestText const &) = delete;

    operator std::string_view() const noexcept { return {room_.data(), end_}; }

private:
    std::array<char, 32> room_; // the longest is "-2.2250738585072014e-308"
    char * end_;
};
