// The languages that are open, and a few that nobody has open any more. One that is asked for by the same names again
// is given out again, so that opening costs a search.

#include "language.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace
{

using kelto::locale::maxNameLength;
using kelto::locale::maxZoneLength;

/** The languages that are kept although nobody has them open. */
constexpr int maxUnused = 16;

/** What a language was asked for by. */
struct Names
{
    const char *locale, *zone; /**< a zone that is not given is the empty text, which names none */
    uint32_t hash;

    Names(const char *givenLocale, const char *givenZone) noexcept
        : locale(givenLocale), zone(givenZone != nullptr ? givenZone : ""), hash(5381)
    {
        for (const char *text : {locale, zone})
            for (; *text != '\0'; ++text)
                hash = hash * 33 + static_cast<unsigned char>(*text);
    }
};

class Languages
{
public:
    ~Languages() { forgetUnused(0); }

    KTLLanguage *find(const Names &names) noexcept
    {
        const std::lock_guard guard(m_mutex);
        return findUnlocked(names);
    }

    /** Adds a language, unless another thread has added the same one meanwhile. @return the one that stays. */
    KTLLanguage *add(std::unique_ptr<KTLLanguage> made, const Names &names) noexcept
    {
        const std::lock_guard guard(m_mutex);
        if (KTLLanguage *const other = findUnlocked(names))
            return other;
        made->users = 1;
        made->next = m_first;
        m_first = made.release();
        return m_first;
    }

    void leave(KTLLanguage *language) noexcept
    {
        {
            const std::lock_guard guard(m_mutex);
            if (--language->users > 0)
                return;
        }
        forgetUnused(maxUnused);
    }

    /** Keeps so many of those that nobody uses: the ones opened last. */
    void forgetUnused(int kept) noexcept
    {
        KTLLanguage *forgotten = nullptr;
        {
            const std::lock_guard guard(m_mutex);
            for (KTLLanguage **place = &m_first; *place != nullptr;)
            {
                KTLLanguage *const language = *place;
                if (language->users > 0 || kept-- > 0)
                {
                    place = &language->next;
                    continue;
                }
                *place = language->next;
                language->next = forgotten;
                forgotten = language;
            }
        }
        while (forgotten != nullptr)
            delete std::exchange(forgotten, forgotten->next);
    }

private:
    KTLLanguage *findUnlocked(const Names &names) const noexcept
    {
        for (KTLLanguage *language = m_first; language != nullptr; language = language->next)
            if (language->hash == names.hash && std::strcmp(language->askedLocale, names.locale) == 0 &&
                std::strcmp(language->askedZone, names.zone) == 0)
            {
                ++language->users;
                return language;
            }
        return nullptr;
    }

    std::mutex m_mutex;
    KTLLanguage *m_first = nullptr;
};

Languages languages;

} // namespace

int KTLOpenLanguage(const char *locale, const char *timeZone, KTLLanguage **language)
{
    if (language != nullptr)
        *language = nullptr;
    if (locale == nullptr || language == nullptr || std::strlen(locale) > maxNameLength)
        return KT_ERR_INVALID_PARAMETER;
    if (timeZone != nullptr && (*timeZone == '\0' || std::strlen(timeZone) > maxZoneLength))
        return KT_ERR_INVALID_PARAMETER;
    formTable *variants = nullptr;
    if (const int result = KTGetVariantFormTable(&variants))
        return result;
    const Names names(locale, timeZone);
    if ((*language = languages.find(names)) != nullptr)
        return 0;
    std::unique_ptr<KTLLanguage> made(new (std::nothrow) KTLLanguage);
    if (made == nullptr)
        return KT_ERR_NO_MEMORY;
    if (const int result = made->open(locale, timeZone, variants))
        return result;
    std::strcpy(made->askedLocale, names.locale);
    std::strcpy(made->askedZone, names.zone);
    made->hash = names.hash;
    *language = languages.add(std::move(made), names);
    return 0;
}

void KTLCloseLanguage(KTLLanguage *language)
{
    if (language != nullptr)
        languages.leave(language);
}

formTable *KTLFormTable(KTLLanguage *language)
{
    return language != nullptr ? &language->table : nullptr;
}

const char *KTLLanguageName(const KTLLanguage *language)
{
    return language != nullptr ? language->name.tag : nullptr;
}

formTable *KTLConversions(void *timeZone, const char *language)
{
    KTLLanguage *opened = nullptr;
    KTLOpenLanguage(language, static_cast<const char *>(timeZone), &opened);
    return KTLFormTable(opened);
}

void KTLForgetLanguages(void)
{
    languages.forgetUnused(0);
    kelto::locale::IcuNumber::forget();
}
