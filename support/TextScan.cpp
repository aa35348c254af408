#include "support/TextScan.h"

#include <bitset>

namespace {

// Membership in constant time, since data lines are scanned by the million.
class CharacterSet {
public:
    explicit CharacterSet(std::string_view members) {
        for (char const c : members) bits_.set(static_cast<unsigned char>(c));
    }
    bool has(char c) const { return bits_[static_cast<unsigned char>(c)]; }

private:
    std::bitset<256> bits_;
};

} // namespace

int sp_ScanLine(std::string_view text, std::string_view separators, std::string_view * tokens, int maxTokens) {
    CharacterSet const set(separators);
    char const * p = text.data();
    char const * const end = p + text.size();
    for (int count = 0;; ++count) {
        while (p != end && set.has(*p)) ++p;
        if (p == end) return count;
        if (count >= maxTokens) return count + 1;
        char const * const start = p;
        while (p != end && !set.has(*p)) ++p;
        tokens[count] = {start, static_cast<std::size_t>(p - start)};
    }
}
