#include "catalog/report.h"

#include <algorithm>
#include <iterator>

namespace
{

struct CodePoints
{
    UChar32 first, last;
};

/** The characters that move the cursor, end a line or turn the text around them. */
constexpr CodePoints blanked[] = {{0, 0x1F}, {0x7F, 0x9F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

bool isBlanked(UChar32 codePoint)
{
    return std::any_of(std::begin(blanked), std::end(blanked),
                       [=](const CodePoints &row) { return codePoint >= row.first && codePoint <= row.last; });
}

} // namespace

namespace kelto
{

void say(Sentence &sentence, std::string_view text) noexcept
{
    sentence.appendLiteral(text.data(), text.size());
}

void sayOnOneLine(Sentence &sentence, std::string_view text) noexcept
{
    const char *const end = text.data() + text.size();
    const char *plain = text.data(); // where text begins that is written as it is
    for (const char *next = plain; next != end;)
    {
        const char *const begin = next;
        const UChar32 codePoint = takeCodePoint(next, end);
        if (!isBlanked(codePoint))
            continue;
        sentence.write(Ending::open, UTF8Text{plain, static_cast<size_t>(begin - plain), UINT64_MAX});
        say(sentence, codePoint == '\n' ? "\\n" : " ");
        plain = next;
    }
    sentence.write(Ending::open, UTF8Text{plain, static_cast<size_t>(end - plain), UINT64_MAX});
}

void reportFile(const KTCatalog &catalog, const char *language, const char *path, int result) noexcept
{
    report(catalog, {language, path, 0, result}, [&](Sentence &sentence) {
        sayOnOneLine(sentence, path);
        say(sentence, *path != '\0' ? ": " : "");
        say(sentence, KTResultText(result));
    });
}

} // namespace kelto
