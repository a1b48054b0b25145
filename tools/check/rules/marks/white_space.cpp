#include "check/rules/marks/white_space.h"

#include "check/rules/marks/line_breaks.h"
#include "check/texts/blanks.h"
#include "check/texts/characters.h"
#include "check/texts/formats.h"

#include <optional>

namespace tool::check
{
namespace
{

void compareEdges(Subject &subject)
{
    const std::string_view here = subject.text();
    const std::string_view there = subject.originalText();
    const Range edges = coreOf(here);
    const Range originals = coreOf(there);
    if (edges.begin == edges.end || originals.begin == originals.end)
        return; // nothing but white space
    if (here.substr(0, edges.begin) != there.substr(0, originals.begin))
        subject.find(Rule::whiteSpace, subject.placeOf({0, edges.begin}), {Text::spaceAtBeginning},
                     subject.noteInOriginal({0, originals.begin}));
    const char32_t last = characterBefore(here, edges.end);
    const bool hasWideMark =
        (last >= 0x3001 && last <= 0x3002) || (last >= 0xFF01 && last <= 0xFF5E); // with a blank in itself
    const bool isBlankOfMark = hasWideMark && edges.end == here.size() && there.substr(originals.end) == " ";
    if (here.substr(edges.end) != there.substr(originals.end) && !isBlankOfMark)
        subject.find(Rule::whiteSpace, subject.placeOf({edges.end, here.size()}), {Text::spaceAtEnd},
                     subject.noteInOriginal({originals.end, there.size()}));
}

void compareBlanks(Subject &subject)
{
    if (const std::optional<Range> blanks = doubleBlankIn(subject.text());
        blanks && !doubleBlankIn(subject.originalText()))
        subject.find(Rule::whiteSpace, subject.placeOf(*blanks), {Text::blanksInARow});
}

/** Whether a letter is of a script in which words stand apart from what they are about. */
bool isApart(char32_t character)
{
    const UScriptCode script = scriptOf(character);
    return isLetter(character) && (script == USCRIPT_LATIN || script == USCRIPT_CYRILLIC || script == USCRIPT_GREEK);
}

/** The first placeholder of a message that a word touches in front, or behind. */
std::optional<Range> touchedIn(const ParsedFile &parsed, const Message &message, bool isInFront)
{
    const std::string_view raw = parsed.rawText(message);
    for (const Piece &piece : parsed.piecesOf(message))
    {
        if (piece.kind != Piece::Kind::placeholder ||
            writesNothing(raw.substr(piece.begin, piece.positionBegin - piece.begin)))
            continue;
        size_t next = piece.end;
        const bool isEscape = piece.begin > 1 && escapeLength(raw.substr(piece.begin - 2, 2)) > 0;
        const bool isAlone = isInFront ? piece.begin == 0 || isEscape || !parsed.isText(message, piece.begin - 1)
                                       : next >= raw.size() || !parsed.isText(message, next);
        if (!isAlone && isApart(isInFront ? characterBefore(raw, piece.begin) : takeUtf8(raw, next)))
            return piece.place;
    }
    return std::nullopt;
}

void comparePlaceholderBlanks(Subject &subject)
{
    if (!subject.message().hasPlaceholder || !subject.original().hasPlaceholder)
        return;
    for (const bool isInFront : {true, false})
        if (const auto touched = touchedIn(subject.parsed(), subject.message(), isInFront);
            touched && !touchedIn(subject.reference(), subject.original(), isInFront))
            subject.find(Rule::whiteSpace, *touched, {isInFront ? Text::noBlankInFront : Text::noBlankBehind});
}

} // namespace

void compareWhiteSpace(Subject &subject)
{
    if (!hasMistypedBreak(subject))
        compareEdges(subject);
    compareBlanks(subject);
    comparePlaceholderBlanks(subject);
}

} // namespace tool::check
