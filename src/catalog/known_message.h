/**
 * What a catalog knows of one message: in each language the format that was prepared from its text, or why there is
 * none; the texts in the source that came with its number; and what was told already. A record is made once, and its
 * members are set once, by whichever thread comes first.
 */
#ifndef KELTO_CATALOG_KNOWN_MESSAGE_H
#define KELTO_CATALOG_KNOWN_MESSAGE_H

#include "format/prepared/prepared_format.h"
#include "strconv/heap_block.h"

#include <atomic>
#include <cstdint>

namespace kelto
{

/** A prepared format that many threads may ask for and one of them makes. */
class SharedFormat
{
public:
    SharedFormat() = default;
    ~SharedFormat() { KTFreePrepared(m_format.load(std::memory_order_relaxed)); }
    SharedFormat(const SharedFormat &) = delete;
    SharedFormat &operator=(const SharedFormat &) = delete;

    const KTPreparedFormat *get() const noexcept { return m_format.load(std::memory_order_acquire); }

    /** Keeps a format unless another thread has kept one in the meantime. @return the one that is kept. */
    const KTPreparedFormat *keep(PreparedOwner format) noexcept
    {
        KTPreparedFormat *there = nullptr;
        if (m_format.compare_exchange_strong(there, format.get(), std::memory_order_acq_rel))
            return format.release();
        return there;
    }

private:
    std::atomic<KTPreparedFormat *> m_format{nullptr};
};

/** A message in one language. */
struct MessageInLanguage
{
    SharedFormat format;
    std::atomic<int> refused{0}; /**< why there is no format, once that is known */
    std::atomic<bool> isTold{false};
    std::atomic<bool> isLookedUp{false};
    std::atomic<const char *> text{nullptr}; /**< as it stands in the file, once it was looked up; null for none */
};

/** A text in the source, prepared. */
class SourceText
{
public:
    /** Copies a text and prepares it; null where there is no memory for that. */
    static std::unique_ptr<SourceText> make(const char *text, size_t length, formTable *table,
                                            size_t languages) noexcept;

    bool is(const char *text, size_t length) const noexcept;

    const char *text() const noexcept { return m_text.get(); }
    /** The format; null where there is none, and then result() says why. */
    const KTPreparedFormat *format() const noexcept { return m_format.get(); }
    int result() const noexcept { return m_result; }

    /**
     * The first slot that this text encodes and its translation in a language does not, or `none`. It is computed once
     * for each language.
     */
    uint32_t lostEncoding(size_t language, const KTPreparedFormat &translation) const noexcept;
    static constexpr uint32_t none = UINT32_MAX;

private:
    friend class KnownMessage;

    HeapBlock<char> m_text;
    size_t m_length = 0;
    PreparedOwner m_format;
    int m_result = 0;
    std::unique_ptr<std::atomic<uint32_t>[]> m_lost; // by language: the slot + 1, or `none`; 0 until it is computed
    std::unique_ptr<SourceText> m_next;
    unsigned m_count = 0; // of the texts from this one on
};

class KnownMessage
{
public:
    /** A record for a number; null where there is no memory for it. */
    static std::unique_ptr<KnownMessage> make(uint32_t number, size_t languages) noexcept;
    ~KnownMessage();
    KnownMessage(const KnownMessage &) = delete;
    KnownMessage &operator=(const KnownMessage &) = delete;

    uint32_t number() const noexcept { return m_number; }
    MessageInLanguage &in(size_t language) noexcept { return m_inLanguage[language]; }

    /** The kept text in the source that reads so, or null. */
    const SourceText *findSource(const char *text, size_t length) const noexcept;
    /** Keeps a text in the source, if there is room for it; else the caller still owns it. */
    const SourceText *keepSource(std::unique_ptr<SourceText> &source) noexcept;

    std::atomic<const KTPreparedFormat *> first{nullptr}; /**< of the first language that has a format */
    std::atomic<bool> isSourceTold{false};
    std::atomic<bool> isUnknown{false}; /**< counted among the numbers that no file has */

private:
    explicit KnownMessage(uint32_t number) noexcept : m_number(number) {}

    static constexpr unsigned mostSources = 8;
    const uint32_t m_number;
    std::unique_ptr<MessageInLanguage[]> m_inLanguage;
    std::atomic<SourceText *> m_sources{nullptr}; // the newest first
};

} // namespace kelto

#endif
