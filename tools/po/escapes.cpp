#include "po/escapes.h"

#include <array>

namespace po
{

std::string escaped(std::string_view text, bool &hasControls)
{
    std::string result;
    for (size_t at = 0; at < text.size(); ++at)
    {
        const char byte = text[at];
        constexpr std::string_view meant = "\\\t\r\n&<>\"";
        constexpr std::array<const char *, 8> written = {"\\\\",  "\\t",  "\\r",  "\\n",
                                                         "&amp;", "&lt;", "&gt;", "&quot;"};
        const size_t row = meant.find(byte);
        const bool isNoCharacter = text.substr(at, 2) == "\xEF\xBF" && at + 2 < text.size() &&
                                   static_cast<unsigned char>(text[at + 2]) >= 0xBE; // U+FFFE, U+FFFF
        if (row != std::string_view::npos)
            result += written.at(row);
        else if ((byte >= 0 && byte < ' ') || isNoCharacter)
        {
            result += "\uFFFD";
            hasControls = true;
            at += isNoCharacter ? 2 : 0;
        }
        else
            result += byte;
    }
    return result;
}

std::string unescaped(const std::string &text)
{
    std::string result;
    for (size_t at = 0; at < text.size(); ++at)
    {
        constexpr std::string_view written = "\\trn";
        constexpr std::string_view meant = "\\\t\r\n";
        const size_t row =
            text[at] == '\\' && at + 1 < text.size() ? written.find(text[at + 1]) : std::string_view::npos;
        if (row == std::string_view::npos)
            result += text[at];
        else
        {
            result += meant[row];
            ++at;
        }
    }
    return result;
}

} // namespace po
