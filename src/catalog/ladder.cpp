#include "catalog/ladder.h"

#include "catalog/failure_text.h"
#include "catalog/last_resort.h"
#include "catalog/plain_text.h"
#include "format/prepared/prepared_call.h"
#include "format/tables/form_table.h"
#include "selection/prepare_message.h"

#include <algorithm>
#include <cstring>

namespace
{

using kelto::KnownMessage;
using kelto::Language;
using kelto::MessageInLanguage;
using kelto::PreparedOwner;
using kelto::SourceText;

/** The number of a message as files have it; noNumber, which no message has, for a number beyond 32 bits. */
constexpr uint32_t noNumber = UINT32_MAX;
constexpr uint32_t numberOf(const KTCatalogRequest &request)
{
    return request.id >= 0 && request.id < noNumber ? static_cast<uint32_t>(request.id) : noNumber;
}

/** The number of a message as reports name it. */
int64_t reportedId(const KTCatalogRequest &request)
{
    return request.isUnsigned && request.id < 0 ? INT64_MAX : request.id;
}

kelto::TypedCall callOf(const KTCatalog &catalog, const KTCatalogRequest &request)
{
    return {catalog.options.formatOptions, catalog.options.passThru, request.arguments, request.count};
}

/** The bytes of UTF-8 that a unit of text has at most. */
template <typename Unit> constexpr size_t bytesOf = sizeof(Unit) == 1 ? 1 : 3;

/** One call on its way down the ladder. */
template <typename Unit> class Descent
{
public:
    Descent(const KTCatalog &catalog, const KTCatalogRequest &request, size_t capacity, Unit *out)
        : m_catalog(catalog), m_request(request), m_number(numberOf(request)), m_capacity(capacity), m_out(out),
          m_known(catalog.messages.find(m_number))
    {
    }

    /** Tries the format that was the first usable one before, then goes down the ladder from the top. */
    void run()
    {
        if (m_catalog.mayEncode() && writeFirst())
            return;
        size_t rung = 0;
        for (Language *language = m_catalog.languages.get(); language != nullptr; language = language->next.get())
            if (m_isStopped || tryLanguage(*language, rung++))
                return;
        if (m_catalog.name != nullptr) // a null catalog keeps nothing
            keepNumber(false);
        if (m_isStopped || trySource() || m_isStopped)
            return;
        m_need = m_capacity;
        kelto::writeLastResort(m_catalog, m_request, &m_need, m_out);
    }

    int finish(size_t *size) const
    {
        if (m_isStopped && m_capacity > 0)
            *m_out = 0;
        *size = m_isStopped ? 0 : m_need;
        if (m_isStopped)
            return KT_ERR_CONVERSION_FAILED;
        return m_need < m_capacity ? 0 : KT_ERR_BUFFER_TOO_SMALL;
    }

private:
    bool writeFirst()
    {
        if (m_known == nullptr)
            return false;
        const KTPreparedFormat *const first = m_known->first.load(std::memory_order_acquire);
        return first != nullptr && keepsEncoding(*first) && write(*first, m_catalog.options.maxSize) == 0;
    }

    /** Formats. @return 0 where the text can be used, whether it fits into the room or not. */
    int write(const KTPreparedFormat &format, size_t maxSize)
    {
        m_need = m_capacity;
        const kelto::TypedCall call = callOf();
        const int result = kelto::formatWithBeginning(format, call, &m_need, m_out);
        if (result == 0 || result == KT_ERR_BUFFER_TOO_SMALL)
            return m_need <= maxSize / bytesOf<Unit> || isShortEnough(format, maxSize) ? 0 : KT_ERR_BUFFER_TOO_SMALL;
        askWhetherStopped();
        return result;
    }

    kelto::TypedCall callOf() const { return ::callOf(m_catalog, m_request); }

    /** Whether the text is within the limit of its bytes. */
    [[gnu::noinline]] bool isShortEnough(const KTPreparedFormat &format, size_t maxSize) const
    {
        size_t need = 0;
        if constexpr (bytesOf<Unit> == 1)
            need = m_need;
        else
            kelto::formatWithBeginning<char>(format, callOf(), &need, nullptr);
        return need <= KTTextLimit(maxSize, m_request.arguments, m_request.count);
    }

    void askWhetherStopped()
    {
        const KTCatalogOptions &options = m_catalog.options;
        m_isStopped = m_isStopped || (options.isStopped != nullptr && options.isStopped(options.context));
    }

    size_t sourceLength() const
    {
        return m_request.sourceLength == SIZE_MAX ? std::strlen(m_request.source)
                                                  : strnlen(m_request.source, m_request.sourceLength);
    }

    /** The text in the source, prepared; null where there is none, or no memory for it. */
    const SourceText *source()
    {
        if (m_source != nullptr || m_request.source == nullptr)
            return m_source;
        const size_t length = sourceLength();
        if (m_known != nullptr)
            m_source = m_known->findSource(m_request.source, length);
        if (m_source != nullptr)
            return m_source;
        m_ownSource =
            SourceText::make(m_request.source, length, m_catalog.sourceConversions.table(), m_catalog.languageCount);
        if (m_ownSource != nullptr)
            m_source = m_known != nullptr ? m_known->keepSource(m_ownSource) : m_ownSource.get();
        return m_source;
    }

    /** Whether translations may leave out an encoder that the text in the source asks for. */
    bool mayLoseEncoding() const
    {
        return m_request.source != nullptr && (m_catalog.options.formatOptions & KT_ENCODE_ALL) == 0 &&
               kelto::findEncoder(m_catalog.sourceConversions.table()) != nullptr;
    }

    /** Whether the first format is known to encode what the text in the source does. */
    [[gnu::noinline]] bool keepsEncoding(const KTPreparedFormat &first)
    {
        if (!mayLoseEncoding())
            return true;
        const SourceText *const kept = m_known->findSource(m_request.source, sourceLength());
        size_t rung = 0;
        while (rung < m_catalog.languageCount && m_known->in(rung).format.get() != &first)
            ++rung;
        return kept != nullptr && rung < m_catalog.languageCount && kept->lostEncoding(rung, first) == SourceText::none;
    }

    /** Makes a record of the number, where there is none yet and it may be kept. */
    void keepNumber(bool isInFile)
    {
        if (m_known == nullptr)
            m_known = m_catalog.messages.get(m_number, m_catalog.languageCount, !isInFile);
        if (m_known != nullptr && isInFile)
            m_catalog.messages.setKnown(*m_known);
    }

    /** @return whether the message is written. */
    bool tryLanguage(Language &language, size_t rung)
    {
        const bool wasTried = language.isTried();
        const MessageTable *const table = kelto::tableOf(m_catalog, language);
        if (!wasTried)
            askWhetherStopped();
        if (table == nullptr || m_isStopped)
            return false;
        const char *const text = textIn(language, rung);
        PreparedOwner own;
        int result = 0;
        const KTPreparedFormat *const format = prepare(language, rung, text, own, result);
        uint32_t lost = SourceText::none;
        if (format != nullptr && mayLoseEncoding() && source() != nullptr)
            lost = m_source->lostEncoding(rung, *format);
        const bool hasMemory = format != nullptr || result != KT_ERR_NO_MEMORY;
        m_isFirst = m_isFirst && lost == SourceText::none && hasMemory;
        if (lost != SourceText::none)
            result = KT_ERR_INVALID_PARAMETER;
        else if (format != nullptr)
        {
            const KTPreparedFormat *none = nullptr;
            if (m_known != nullptr && own == nullptr && m_isFirst)
                m_known->first.compare_exchange_strong(none, format, std::memory_order_acq_rel);
            result = write(*format, m_catalog.options.maxSize);
        }
        else if (m_request.count == 0 && text != nullptr && isEmptyBelow(language, rung))
        {
            writeNothing();
            return true;
        }
        if (result != 0 && !m_isStopped)
            tell(language, rung, text, result, lost);
        return result == 0;
    }

    /** Prepares a message in a language. @return its format; null where it has none, and then `result` says why. */
    const KTPreparedFormat *prepare(const Language &language, size_t rung, const char *text, PreparedOwner &own,
                                    int &result)
    {
        MessageInLanguage *const here = m_known != nullptr ? &m_known->in(rung) : nullptr;
        if (here != nullptr)
            if (const KTPreparedFormat *const there = here->format.get())
                return there;
        result = here != nullptr ? here->refused.load(std::memory_order_relaxed) : 0;
        if (result != 0)
            return nullptr;
        result = KT_ERR_INVALID_MSG_ID;
        kelto::TableView table;
        if (text != nullptr && *text != '\0' && table.open(language.table()))
            result = kelto::prepareMessage(table, m_number, language.locale(), language.conversions(), own).result;
        if (own != nullptr)
            return here != nullptr ? here->format.keep(std::move(own)) : own.get();
        if (here != nullptr && result != KT_ERR_NO_MEMORY) // memory may be there the next time
            here->refused.store(result, std::memory_order_relaxed);
        return nullptr;
    }

    /** The message as it stands in a language whose file is loaded; null for none. */
    const char *textIn(const Language &language, size_t rung)
    {
        if (m_known != nullptr && m_known->in(rung).isLookedUp.load(std::memory_order_acquire))
            return m_known->in(rung).text.load(std::memory_order_relaxed);
        const char *const text = language.text(m_number);
        const bool wasKnown = m_known != nullptr;
        keepNumber(text != nullptr);
        if (m_known != nullptr && !wasKnown)
            tellMissingAbove(language);
        if (m_known != nullptr)
        {
            m_known->in(rung).text.store(text, std::memory_order_relaxed);
            m_known->in(rung).isLookedUp.store(true, std::memory_order_release);
        }
        return text;
    }

    /** Whether neither the languages below this one nor the source have a text for a message that is empty here. */
    bool isEmptyBelow(Language &language, size_t rung)
    {
        for (Language *below = &language; below != nullptr; below = below->next.get(), ++rung)
        {
            const char *const text = kelto::tableOf(m_catalog, *below) != nullptr ? textIn(*below, rung) : nullptr;
            if (text != nullptr && *text != '\0')
                return false;
        }
        return m_request.source == nullptr || sourceLength() == 0;
    }

    void writeNothing()
    {
        if (m_capacity > 0)
            *m_out = 0;
        m_need = 0;
    }

    bool trySource()
    {
        if (m_request.source == nullptr || source() == nullptr)
            return false;
        const size_t maxSize = std::max(m_catalog.options.maxSize, kelto::usualMaxSize);
        const int result = m_source->format() != nullptr ? write(*m_source->format(), maxSize) : m_source->result();
        if (result == 0 || m_isStopped)
            return result == 0;
        if (m_known != nullptr && m_catalog.options.onProblem != nullptr &&
            !m_known->isSourceTold.exchange(true, std::memory_order_relaxed))
        {
            KTCatalogOptions options = m_catalog.options;
            options.maxSize = maxSize;
            kelto::report(m_catalog, {"", "", reportedId(m_request), result}, [&](kelto::Sentence &sentence) {
                kelto::sayWhy(sentence, {m_source->text(), result, options, m_request.arguments, m_request.count,
                                         nullptr, 0, m_catalog.sourceConversions.table()});
            });
            askWhetherStopped();
        }
        return false;
    }

    /** Reports the languages above this one, which could not be reported while the number had no record. */
    void tellMissingAbove(const Language &language)
    {
        size_t rung = 0;
        for (const Language *above = m_catalog.languages.get(); above != &language; above = above->next.get(), ++rung)
            if (above->table() != nullptr)
                tell(*above, rung, nullptr, KT_ERR_INVALID_MSG_ID, SourceText::none);
    }

    /** Reports once that a language was passed over. */
    [[gnu::noinline]] void tell(const Language &language, size_t rung, const char *text, int result, uint32_t lost)
    {
        if (m_known == nullptr || m_catalog.options.onProblem == nullptr ||
            m_known->in(rung).isTold.exchange(true, std::memory_order_relaxed))
            return;
        const kelto::PassedOver passedOver = {language.name(), language.path(), reportedId(m_request), result};
        kelto::report(m_catalog, passedOver, [&](kelto::Sentence &sentence) {
            if (lost != SourceText::none)
                return kelto::sayLostEncoding(sentence, text, lost);
            if (m_number != noNumber || m_request.id == noNumber)
                return kelto::sayWhy(sentence, {text, result, m_catalog.options, m_request.arguments, m_request.count,
                                                &language, m_number, nullptr});
            kelto::say(sentence, "no message has the number ");
            kelto::writeNumber(sentence, static_cast<uint64_t>(m_request.id),
                               !m_request.isUnsigned && m_request.id < 0);
        });
        askWhetherStopped();
    }

    const KTCatalog &m_catalog;
    const KTCatalogRequest &m_request;
    const uint32_t m_number;
    const size_t m_capacity;
    Unit *const m_out;
    KnownMessage *m_known;
    size_t m_need = 0;
    bool m_isStopped = false;
    bool m_isFirst = true; // whether the rungs above would be passed over in every call, not in this one alone
    const SourceText *m_source = nullptr;
    std::unique_ptr<SourceText> m_ownSource; // the text in the source, where it is not kept
};

/** Writes the format that stands in the place of a catalog, without a ladder. */
template <typename Unit>
int writeFormat(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out)
{
    const KTCatalogOptions &options = catalog.options;
    int result = kelto::isStarted() ? KT_ERR_INVALID_PARAMETER : KT_ERR_NOT_INITIALIZED;
    size_t need = *size;
    if (catalog.format != nullptr && kelto::isStarted())
    {
        result = kelto::formatWithBeginning(*catalog.format, callOf(catalog, request), &need, out);
        const bool isText = result == 0 || result == KT_ERR_BUFFER_TOO_SMALL;
        if (isText &&
            (need <= options.maxSize || need <= KTTextLimit(options.maxSize, request.arguments, request.count)))
        {
            *size = need;
            return result;
        }
        if (isText)
            result = KT_ERR_BUFFER_TOO_SMALL;
        else if (options.isStopped != nullptr && options.isStopped(options.context))
            result = KT_ERR_CONVERSION_FAILED;
    }
    if (*size > 0)
        *out = 0;
    *size = 0;
    return result;
}

template <typename Unit>
[[gnu::noinline]] int climbDown(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out)
{
    if (catalog.isFormat)
        return writeFormat(catalog, request, size, out);
    if (!kelto::isStarted())
    {
        const size_t capacity = *size;
        kelto::writeLastResort(catalog, request, size, out);
        return *size < capacity ? 0 : KT_ERR_BUFFER_TOO_SMALL;
    }
    Descent<Unit> descent(catalog, request, *size, out);
    descent.run();
    return descent.finish(size);
}

} // namespace

namespace kelto
{

template <typename Unit>
int writeMessage(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out) noexcept
{
    // The usual call, done first: a message that was used before, in a catalog with the built-in conversions alone.
    const KnownMessage *const known = catalog.messages.find(numberOf(request));
    const KTPreparedFormat *const first = known != nullptr ? known->first.load(std::memory_order_acquire) : nullptr;
    if (first != nullptr && !catalog.mayEncode() && isStarted())
    {
        size_t need = *size;
        const int result = formatWithBeginning(*first, callOf(catalog, request), &need, out);
        if ((result == 0 || result == KT_ERR_BUFFER_TOO_SMALL) && need <= catalog.options.maxSize / bytesOf<Unit>)
        {
            *size = need;
            return result;
        }
    }
    return climbDown(catalog, request, size, out);
}

template int writeMessage(const KTCatalog &, const KTCatalogRequest &, size_t *, char *) noexcept;
template int writeMessage(const KTCatalog &, const KTCatalogRequest &, size_t *, UCS2 *) noexcept;

} // namespace kelto
