#include "language_name.h"

#include "icu.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unicode/ures.h>

namespace
{

using kelto::locale::Handle;
using Bundle = Handle<UResourceBundle, ures_close>;

constexpr std::string_view root = "root";

/** What a POSIX modifier stands for in BCP 47: a script behind the language, or a variant at the end. */
struct Modifier
{
    std::string_view name, script, variant;
};

constexpr Modifier modifiers[] = {
    {"latin", "-Latn", ""},
    {"cyrillic", "-Cyrl", ""},
    {"devanagari", "-Deva", ""},
    {"valencia", "", "-valencia"},
};

/** Pieces of a name put together; what does not fit is left out, and the name is then none. */
class Tag
{
public:
    void append(std::string_view piece) noexcept
    {
        for (const char character : piece.substr(0, sizeof m_text - 1 - m_length))
            m_text[m_length++] = character == '_' ? '-' : character;
        m_text[m_length] = '\0';
    }

    const char *text() const noexcept { return m_text; }

private:
    char m_text[ULOC_FULLNAME_CAPACITY + 16] = "";
    size_t m_length = 0;
};

/** A BCP 47 tag for a name of either kind, "de-AT" for "de_AT.UTF-8@euro". */
Tag tagOf(std::string_view name)
{
    const std::string_view base = name.substr(0, name.find_first_of(".@"));
    const size_t at = name.find('@');
    const std::string_view modifier = at != std::string_view::npos ? name.substr(at + 1) : "";
    const auto *const known = std::find_if(std::begin(modifiers), std::end(modifiers),
                                           [&](const Modifier &row) { return row.name == modifier; });
    Tag tag;
    if (base == "C" || base == "POSIX")
        return tag;
    const size_t languageLength = std::min(base.find_first_of("_-"), base.size());
    tag.append(base.substr(0, languageLength));
    tag.append(known != std::end(modifiers) ? known->script : "");
    tag.append(base.substr(languageLength));
    tag.append(known != std::end(modifiers) ? known->variant : "");
    return tag;
}

/** Whether ICU has rules of its own for a name, which is all that is asked for. */
int findLanguage(const char *name, bool &isFound)
{
    UErrorCode status = U_ZERO_ERROR;
    const Bundle bundle(ures_openDirect(nullptr, name, &status));
    isFound = U_SUCCESS(status);
    return isFound || status == U_MISSING_RESOURCE_ERROR ? 0 : kelto::locale::resultOf(status);
}

/** Cuts a name to the nearest for which ICU has rules; empty where there is none. */
int cutToKnown(char *base)
{
    for (bool isFound = false; *base != '\0';)
    {
        if (const int result = findLanguage(base, isFound))
            return result;
        if (isFound)
            return 0;
        char *const last = std::strrchr(base, '_');
        *(last != nullptr ? last : base) = '\0';
    }
    return 0;
}

} // namespace

namespace kelto::locale
{

int LanguageName::make(const char *name) noexcept
{
    const Tag asked = tagOf(name);
    char base[ULOC_FULLNAME_CAPACITY] = "";
    int32_t parsed = 0;
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = uloc_forLanguageTag(asked.text(), icu, sizeof icu, &parsed, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR)
        return KT_ERR_NO_MEMORY;
    const bool isTag = U_SUCCESS(status) && length > 0 && length < static_cast<int32_t>(sizeof icu) &&
                       static_cast<size_t>(parsed) == std::strlen(asked.text());
    if (isTag)
        uloc_getBaseName(icu, base, sizeof base, &status);
    if (isTag && U_SUCCESS(status))
        if (const int result = cutToKnown(base))
            return result;
    if (*base == '\0' || root == base)
    {
        // ICU without any data would know no language at all.
        bool isFound = false;
        const int result = findLanguage("root", isFound);
        icu[root.copy(icu, sizeof icu)] = tag[root.copy(tag, sizeof tag)] = '\0';
        return result != 0 || isFound ? result : KT_ERR_CONVERSION_FAILED;
    }
    // The keywords, as "-u-nu-thai", belong to the rules.
    const char *const keywords = std::strchr(icu, '@');
    Tag known;
    known.append(base);
    char full[2 * ULOC_FULLNAME_CAPACITY];
    full[std::string_view(base).copy(full, sizeof base)] = '\0';
    if (keywords != nullptr)
        std::strcat(full, keywords);
    length = uloc_toLanguageTag(full, tag, sizeof tag, false, &status);
    if (U_FAILURE(status) || length >= static_cast<int32_t>(sizeof tag))
        tag[std::string_view(known.text()).copy(tag, sizeof tag - 1)] = '\0';
    return status == U_MEMORY_ALLOCATION_ERROR ? KT_ERR_NO_MEMORY : 0;
}

} // namespace kelto::locale
