#include "Table.h"

#include <algorithm>

std::string Table::text() const {
    std::vector<std::size_t> widths(columns_.size());
    for (auto const & row : rows_)
        for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], row[i].size());

    std::string text;
    for (auto const & row : rows_) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            std::string const padding(widths[i] - row[i].size(), ' ');
            line += (i > 0 ? "  " : "") + (columns_[i] == Align::left ? row[i] + padding : padding + row[i]);
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}
