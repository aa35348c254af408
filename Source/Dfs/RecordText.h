// RecordText: the records of a data file as bytes, put together before they go to a stream.
#pragma once

#include "Dfs/LittleEndian.h"

#include <cstdint>
#include <string>
#include <string_view>

class RecordText {
public:
    template <class Number> RecordText & number(Number value) {
        char bytes[sizeof value];
        storeNumber(bytes, value);
        text_.append(bytes, sizeof bytes);
        return *this;
    }
    // A 32-bit length and the bytes.
    RecordText & string(std::string_view value) {
        number(static_cast<std::int32_t>(value.size()));
        text_.append(value);
        return *this;
    }

    char const * data() const noexcept { return text_.data(); }
    std::size_t size() const noexcept { return text_.size(); }
    void clear() noexcept { text_.clear(); }

private:
    std::string text_;
};
