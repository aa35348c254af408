// Text in columns.
#pragma once

#include <string>
#include <vector>

// Columns padded to one width each: the first line and all others are rows of equal length.
class Table {
public:
    enum class Align { left, right };

    explicit Table(std::vector<Align> columns) : columns_(std::move(columns)) {}
    void addRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    std::string text() const;

private:
    std::vector<Align> columns_;
    std::vector<std::vector<std::string>> rows_;
};
