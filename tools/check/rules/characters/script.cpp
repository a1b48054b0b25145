#include "check/rules/characters/script.h"

#include "check/texts/characters.h"
#include "check/texts/language_words.h"

#include <array>
#include <optional>
#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace tool::check
{
namespace
{

/** Whether letters of a script look like Latin ones. */
bool looksLatin(UScriptCode script)
{
    return script == USCRIPT_CYRILLIC || script == USCRIPT_GREEK;
}

std::string nameOf(UScriptCode script)
{
    const char *const name = uscript_getName(script);
    return name != nullptr ? name : "?";
}

/** The ASCII letters and digits of a text, in small letters, and nothing else of it. */
std::string lettersOf(std::string_view text)
{
    std::string letters;
    for (const char byte : text)
        if ((byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z'))
            letters += byte;
        else if (byte >= 'A' && byte <= 'Z')
            letters += static_cast<char>(byte - 'A' + 'a');
    return letters;
}

/** Finds a text that was typed with the keyboard of another script: Latin words alone, none of them in the original. */
void checkKeyboard(Subject &subject)
{
    constexpr uint8_t shortest = 4;
    if (!subject.hasOriginal() || isWrittenInLatin(subject.language()))
        return;
    const std::string original = lettersOf(subject.originalText());
    std::optional<Range> found;
    for (const Token &token : subject.tokens())
    {
        if (!token.isWord())
            continue;
        const std::string_view word = subject.tokens().text(token);
        const std::string letters = lettersOf(word);
        if (letters.size() != word.size() || original.find(letters) != std::string::npos)
            return; // the word is of another script, or was taken over
        if (!found && token.letters >= shortest && letters == word)
            found = Range{token.begin, token.end};
    }
    if (found)
        subject.find(Rule::wrongScript, subject.placeOf(*found),
                     {Text::foreignScript, {nameOf(USCRIPT_LATIN), subject.parsed().language()}});
}

} // namespace

Scripts::Scripts(const std::string &language)
{
    std::array<UScriptCode, 8> codes{};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t count =
        language.empty() ? 0 : uscript_getCode(language.substr(0, 2).c_str(), codes.data(), codes.size(), &status);
    if (U_SUCCESS(status) && count > 0)
        m_scripts.insert(codes.begin(), codes.begin() + count);
}

void Scripts::check(Subject &subject) const
{
    if (m_scripts.empty())
        return;
    checkKeyboard(subject);
    const auto isOwn = [this](UScriptCode script) {
        return script == USCRIPT_LATIN || script == USCRIPT_COMMON || script == USCRIPT_INHERITED ||
               script == USCRIPT_UNKNOWN || script == USCRIPT_BOPOMOFO || m_scripts.count(script) > 0;
    };
    const std::string_view text = subject.text();
    std::optional<std::set<UScriptCode>> original; // computed when it is needed
    const auto originalHas = [&](UScriptCode script) {
        if (!original)
        {
            original.emplace();
            for (size_t at = 0; at < subject.originalText().size();)
                original->insert(scriptOf(takeUtf8(subject.originalText(), at)));
        }
        return original->count(script) > 0;
    };
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        size_t end = at;
        size_t letters = 0;
        bool hasLatin = false;
        UScriptCode foreign = USCRIPT_COMMON;
        UScriptCode alike = USCRIPT_COMMON;
        while (at < text.size())
        {
            const char32_t character = takeUtf8(text, at);
            if (!isLetter(character) &&
                (character < 0x80 || u_charType(static_cast<UChar32>(character)) != U_NON_SPACING_MARK))
                break;
            end = at;
            ++letters;
            const UScriptCode script = scriptOf(character);
            const bool isMicro = character == 0x3BC && letters == 1;
            if (isMicro)
                continue;
            hasLatin = hasLatin || script == USCRIPT_LATIN;
            foreign = isOwn(script) ? foreign : script;
            alike = looksLatin(script) ? script : alike;
        }
        const Range place{begin, end};
        if (foreign != USCRIPT_COMMON && (letters > 1 || !looksLatin(foreign)) && !originalHas(foreign))
        {
            subject.find(Rule::wrongScript, subject.placeOf(place),
                         {Text::foreignScript, {nameOf(foreign), subject.parsed().language()}});
            return; // one finding tells it of the whole message
        }
        if (alike != USCRIPT_COMMON && !subject.isFull(Rule::wrongScript) && hasLatin)
            subject.find(Rule::wrongScript, subject.placeOf(place),
                         {Text::mixedScripts, {quotation(text.substr(begin, end - begin)), nameOf(alike)}});
    }
}

} // namespace tool::check
