// The C library's own numbers, in the C locale even when the program runs under another.
#pragma once

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale.h>
#include <string>

class CLocale {
public:
    CLocale() : locale_(newlocale(LC_ALL_MASK, "C", nullptr)), before_(uselocale(locale_)) {}
    ~CLocale() {
        uselocale(before_);
        freelocale(locale_);
    }
    CLocale(CLocale const &) = delete;
    CLocale & operator=(CLocale const &) = delete;

private:
    locale_t locale_;
    locale_t before_;
};

inline double cToReal(std::string const & text) {
    CLocale const c;
    return std::strtod(text.c_str(), nullptr);
}

template <class... Args> std::string cFormat(char const * format, Args... args) {
    CLocale const c;
    int const length = std::snprintf(nullptr, 0, format, args...);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), format, args...);
    text.pop_back();
    return text;
}
