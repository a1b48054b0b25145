#include "check/directions.h"

#include "check/utf8.h"

#include <fmt/core.h>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

constexpr char32_t popEmbedding = 0x202C;
constexpr char32_t popIsolate = 0x2069;

} // namespace

bool isIsolate(char32_t character)
{
    return character >= 0x2066 && character < popIsolate;
}

std::vector<DirectionControl> directionControlsIn(std::string_view utf8Text)
{
    constexpr char leadByte = '\xE2'; // of all of them
    std::vector<DirectionControl> controls;
    for (size_t at = utf8Text.find(leadByte); at < utf8Text.size(); at = utf8Text.find(leadByte, at))
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(utf8Text, at);
        if ((character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= popIsolate))
            controls.push_back({character, {begin, at}});
    }
    return controls;
}

// What is open is closed in the order of a stack; the end of an isolate also ends what was opened in it.
std::vector<DirectionControl> unbalancedOf(const std::vector<DirectionControl> &controls)
{
    std::vector<DirectionControl> unbalanced;
    std::vector<DirectionControl> open;
    size_t openIsolates = 0;
    for (const DirectionControl &control : controls)
        if (!closes(control))
        {
            open.push_back(control);
            openIsolates += isIsolate(control.character) ? 1 : 0;
        }
        else if (control.character == popIsolate && openIsolates > 0)
        {
            for (; !isIsolate(open.back().character); open.pop_back())
                unbalanced.push_back(open.back());
            open.pop_back();
            --openIsolates;
        }
        else if (control.character == popEmbedding && !open.empty() && !isIsolate(open.back().character))
            open.pop_back();
        else
            unbalanced.push_back(control);
    unbalanced.insert(unbalanced.end(), open.begin(), open.end());
    return unbalanced;
}

bool closes(const DirectionControl &control)
{
    return control.character == popEmbedding || control.character == popIsolate;
}

std::string nameOf(const DirectionControl &control)
{
    char name[100] = "";
    UErrorCode status = U_ZERO_ERROR;
    u_charName(static_cast<UChar32>(control.character), U_UNICODE_CHAR_NAME, name, sizeof name, &status);
    return fmt::format("U+{:04X} {}", static_cast<uint32_t>(control.character), name);
}

} // namespace tool::check
