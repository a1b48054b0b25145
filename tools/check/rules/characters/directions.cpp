#include "check/rules/characters/directions.h"

#include "check/texts/utf8.h"

#include <fmt/core.h>
#include <map>
#include <string>
#include <unicode/uchar.h>
#include <vector>

namespace tool::check
{
namespace
{

constexpr char32_t popEmbedding = 0x202C;
constexpr char32_t popIsolate = 0x2069;

struct DirectionControl
{
    char32_t character;
    Range place; // in the text
};

/** Whether it begins a part whose direction is its own, which ends at U+2069. */
bool isIsolate(char32_t character)
{
    return character >= 0x2066 && character < popIsolate;
}

/** In the order of the text. */
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

/** Whether it ends what another one began. */
bool closes(const DirectionControl &control)
{
    return control.character == popEmbedding || control.character == popIsolate;
}

/**
 * Those that are not closed, or close nothing. What is open is closed in the order of a stack; the end of an isolate
 * also ends what was opened in it.
 */
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

/** "U+202E RIGHT-TO-LEFT OVERRIDE". */
std::string nameOf(const DirectionControl &control)
{
    char name[100] = "";
    UErrorCode status = U_ZERO_ERROR;
    u_charName(static_cast<UChar32>(control.character), U_UNICODE_CHAR_NAME, name, sizeof name, &status);
    return fmt::format("U+{:04X} {}", static_cast<uint32_t>(control.character), name);
}

using Openings = std::map<char32_t, std::vector<DirectionControl>>;

Openings openingsAmong(const std::vector<DirectionControl> &controls)
{
    Openings openings;
    for (const DirectionControl &control : controls)
        if (!closes(control))
            openings[control.character].push_back(control);
    return openings;
}

void compareDirections(Subject &subject, const std::vector<DirectionControl> &here)
{
    Openings ours = openingsAmong(here);
    Openings theirs = openingsAmong(directionControlsIn(subject.originalText()));
    for (const auto &[character, controls] : ours)
        if (isIsolate(character)) // a sentence may need it around a placeholder, and it turns nothing else
            continue;
        else if (const size_t known = theirs[character].size(); controls.size() > known)
            subject.find(Rule::bidiControls, subject.placeOf(controls[known].place),
                         {Text::directionExtra, {nameOf(controls[known])}});
    for (const auto &[character, controls] : theirs)
        if (const size_t known = ours[character].size(); controls.size() > known)
            subject.find(Rule::bidiControls, subject.message().source,
                         {Text::directionMissing, {nameOf(controls[known])}},
                         Note{true, subject.placeOfOriginal(controls[known].place), {Text::referenceHasItHere}});
}

} // namespace

void checkDirections(Subject &subject)
{
    const std::vector<DirectionControl> controls = directionControlsIn(subject.text());
    const std::vector<DirectionControl> unbalanced = unbalancedOf(controls);
    for (const DirectionControl &control : unbalanced)
        subject.find(Rule::bidiControls, subject.placeOf(control.place),
                     {closes(control) ? Text::directionClosesNothing : Text::directionNotClosed, {nameOf(control)}});
    if (unbalanced.empty() && subject.hasOriginal())
        compareDirections(subject, controls);
}

} // namespace tool::check
