// The main program of every test program. It takes the locale of the environment, as a graphical host does, so that the
// run under a decimal comma means something. Temporary files of a program stand in a folder of its own, which goes with
// it.
#include <gmock/gmock.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

// False when the environment promises a decimal point that the locale taken does not have.
bool takeLocale() {
    char const * name = std::setlocale(LC_ALL, "");
    char const * expected = std::getenv("TORVELAN_TEST_DECIMAL");
    if (expected == nullptr) return true;
    char const * actual = std::localeconv()->decimal_point;
    if (std::strcmp(actual, expected) == 0) return true;
    std::fprintf(stderr, "locale '%s' has the decimal point '%s', not '%s'\n", name != nullptr ? name : "(none)",
                 actual, expected);
    return false;
}

} // namespace

int main(int argc, char ** argv) {
    if (!takeLocale()) return 1;
    testing::InitGoogleMock(&argc, argv);
    std::string folder = (std::filesystem::temp_directory_path() / "torvelan-test-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return 1;
    setenv("TMPDIR", folder.c_str(), 1);
    int const status = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return status;
}
