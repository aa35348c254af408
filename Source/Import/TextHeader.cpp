#include "Import/TextHeader.h"

#include "Import/TextNames.h"
#include "support/Numbers.h"
#include "support/Streams.h"

namespace {

constexpr CharacterSet equals{"="};

// "label=x" or "index=1".
void readSetting(std::string_view setting, TextHeader & header) {
    std::string_view key, value;
    sp_GetToken(setting, equals, key);
    sp_GetToken(setting, equals, value, '"');
    if (equalNoCase(key, "label"))
        header.label = YString(value);
    else if (equalNoCase(key, "index") && !value.empty() && value.front() >= '0' && value.front() <= '9')
        header.division = parseInt(value);
}

void readSettings(std::string_view rest, TextHeader & header) {
    std::string_view setting;
    while (sp_GetToken(rest, textSeparators, setting)) readSetting(setting, header);
}

bool isComment(std::string_view token) {
    return token.empty() || token.front() == '*' || token.front() == '.';
}

} // namespace

TextHeader readTextHeader(tvstream & stream) {
    TextHeader header;
    while (stream.getline(&header.firstLine)) {
        std::string_view rest = header.firstLine, token;
        sp_GetToken(rest, textSeparators, token);
        if (equalNoCase(token, ".div"))
            readSettings(rest, header);
        else if (!isComment(token))
            break;
    }
    return header;
}
