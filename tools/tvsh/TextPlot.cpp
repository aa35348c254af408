#include "TextPlot.h"

#include "NumberText.h"
#include "TextOutput.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::string_view symbols = "*+ox#%@&";
constexpr int digits = 4;

struct Range {
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();

    void include(double value) noexcept {
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
    bool isEmpty() const noexcept { return !(least <= greatest); }
    // 0 to 1; the middle where all values are equal. Halves keep the greatest differences finite.
    double place(double value) const noexcept {
        return least == greatest ? 0.5 : (value / 2 - least / 2) / (greatest / 2 - least / 2);
    }
};

struct Point {
    double x, y;
    bool isFinite() const noexcept { return std::isfinite(x) && std::isfinite(y); }
};

Point pointOf(XYVector const & v, std::int64_t i, std::int64_t d) {
    bool const hasX = d < v.ref.numDivisions() && i < v.ref.length(d);
    double const y = v.isComplex() ? std::hypot(v.getReal(i, d), v.getImag(i, d)) : v.getReal(i, d);
    return {hasX ? v.ref.getReal(i, d) : static_cast<double>(i), y};
}

// A sweep by decades or octaves: each x the same multiple of the one before, at both ends.
bool isLogarithmic(XYVector const & v) {
    std::int64_t const n = v.ref.length(0);
    if (n < 4 || v.length(0) < n) return false;
    auto const ratio = [&v](std::int64_t i) { return v.ref.getReal(i, 0) / v.ref.getReal(i - 1, 0); };
    double const first = ratio(1);
    auto const isAlike = [first](double other) { return std::fabs(other - first) <= 0.01 * first; };
    return v.ref.getReal(0, 0) > 0 && first > 1.001 && isAlike(ratio(2)) && isAlike(ratio(n - 2)) &&
           isAlike(ratio(n - 1));
}

template <class Visit> void forEachPoint(XYVector const & v, std::int64_t d, Visit const & visit) {
    std::int64_t const n = v.length(d);
    for (std::int64_t i = 0; i < n; ++i)
        if (Point const point = pointOf(v, i, d); point.isFinite()) visit(point);
}

class Canvas {
public:
    Canvas(PlotOptions const & options, Range const & x, Range const & y, bool isLog)
        : width_(options.width), height_(options.height),
          x_(isLog ? Range{std::log10(x.least), std::log10(x.greatest)} : x), y_(y), isLog_(isLog),
          rows_(static_cast<std::size_t>(height_), std::string(static_cast<std::size_t>(width_), ' ')) {}

    void drawCurve(XYVector const & v, std::int64_t d, char symbol) {
        bool isFirst = true;
        Point last{};
        forEachPoint(v, d, [&](Point const & point) {
            drawLine(isFirst ? point : last, point, symbol);
            last = point;
            isFirst = false;
        });
    }
    std::vector<std::string> const & rows() const noexcept { return rows_; }

private:
    int columnOf(double x) const noexcept {
        if (isLog_) x = x > 0 ? std::log10(x) : x_.least;
        return static_cast<int>(std::lround(std::clamp(x_.place(x), 0.0, 1.0) * (width_ - 1)));
    }
    int rowOf(double place) const noexcept { return static_cast<int>(std::lround((1 - place) * (height_ - 1))); }
    void drawLine(Point const & a, Point const & b, char symbol) {
        int const from = columnOf(a.x), to = columnOf(b.x), step = to < from ? -1 : 1;
        double const start = y_.place(a.y), rise = y_.place(b.y) - start;
        int last = rowOf(start);
        for (int column = from;; column += step) {
            int const row = rowOf(from == to ? start + rise : start + rise * (column - from) / (to - from));
            fill(column, last, row, symbol);
            last = row;
            if (column == to) break;
        }
    }
    void fill(int column, int a, int b, char symbol) {
        for (int row = std::min(a, b); row <= std::max(a, b); ++row)
            rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = symbol;
    }

    int width_, height_;
    Range x_, y_;
    bool isLog_;
    std::vector<std::string> rows_;
};

std::string number(double value, PhysType physType) {
    return engineeringNumber(value, digits, std::string(sp_GetPhysTypeUnit(physType)));
}

std::string framed(Canvas const & canvas, Range const & y, PhysType physType) {
    std::string const top = number(y.greatest, physType), bottom = number(y.least, physType);
    std::size_t const margin = std::max(top.size(), bottom.size());
    std::string text;
    for (std::string const & row : canvas.rows()) {
        bool const isFirst = &row == &canvas.rows().front(), isLast = &row == &canvas.rows().back();
        std::string const label = isFirst ? top : isLast ? bottom : "";
        std::string line = std::string(margin - label.size(), ' ') + label + " |" + row;
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string axis(std::size_t margin, int width, Range const & x, XYVector const & v, bool isLog) {
    PhysType const physType = v.ref.totalLength() > 0 ? v.ref.physType() : PT_NONE;
    std::string const first = number(x.least, physType), last = number(x.greatest, physType);
    std::string const name =
        (v.ref.totalLength() > 0 ? displayName(v.ref.name()) : "element") + (isLog ? " (log)" : "");
    std::size_t const used = first.size() + last.size() + name.size(), all = static_cast<std::size_t>(width);
    std::size_t const gap = all > used + 2 ? (all - used) / 2 : 1;
    std::string text = std::string(margin + 1, ' ') + "+" + std::string(all, '-') + "\n";
    return text + std::string(margin + 2, ' ') + first + std::string(gap, ' ') + name + std::string(gap, ' ') + last +
           "\n";
}

} // namespace

std::string plotText(std::vector<XYVector const *> const & values, PlotOptions const & options) {
    Range x, y;
    auto const forEachCurve = [&values](auto const & visit) {
        for (std::size_t k = 0; k < values.size(); ++k)
            for (std::int64_t d = 0; !values[k]->isString() && d < values[k]->numDivisions(); ++d)
                visit(*values[k], d, symbols[k % symbols.size()]);
    };
    forEachCurve([&](XYVector const & v, std::int64_t d, char) {
        forEachPoint(v, d, [&](Point const & point) {
            x.include(point.x);
            y.include(point.y);
        });
    });
    if (x.isEmpty()) return "nothing to draw\n";
    bool const isLog = isLogarithmic(*values.front()) && x.least > 0;
    Canvas canvas(options, x, y, isLog);
    forEachCurve([&](XYVector const & v, std::int64_t d, char symbol) { canvas.drawCurve(v, d, symbol); });
    std::string text;
    for (std::size_t k = 0; k < values.size(); ++k)
        text += std::string(1, symbols[k % symbols.size()]) + " " + displayName(values[k]->name()) + "\n";
    PhysType const unit = values.front()->physType();
    std::size_t const margin = std::max(number(y.greatest, unit).size(), number(y.least, unit).size());
    return text + framed(canvas, y, unit) + axis(margin, options.width, x, *values.front(), isLog);
}
