#include "catalog/known_message.h"

#include "format/grammar/format_string.h"
#include "format/prepared/lost_encoding.h"
#include "format/variants/nil_conversion.h"

#include <cstring>
#include <new>

namespace kelto
{

std::unique_ptr<SourceText> SourceText::make(const char *text, size_t length, formTable *table,
                                             size_t languages) noexcept
{
    std::unique_ptr<SourceText> source(new (std::nothrow) SourceText);
    if (source == nullptr)
        return nullptr;
    source->m_text = allocateHeap<char>(length + 1);
    // cppcheck-suppress leakReturnValNotUsed
    source->m_lost.reset(new (std::nothrow) std::atomic<uint32_t>[static_cast<uint32_t>(languages) + 1U] {});
    if (source->m_text == nullptr || source->m_lost == nullptr)
        return nullptr;
    std::memcpy(source->m_text.get(), text, length);
    source->m_text[length] = '\0';
    source->m_length = length;
    WithNil withNil(table);
    source->m_result = prepareFormat(source->text(), withNil.table(), source->m_format).result;
    if (source->m_format != nullptr)
        source->m_format->table = table; // the encoder is looked up there
    return source;
}

bool SourceText::is(const char *text, size_t length) const noexcept
{
    return m_length == length && std::memcmp(m_text.get(), text, length) == 0;
}

uint32_t SourceText::lostEncoding(size_t language, const KTPreparedFormat &translation) const noexcept
{
    if (m_format == nullptr)
        return none;
    uint32_t lost = m_lost[language].load(std::memory_order_relaxed);
    if (lost == 0)
    {
        const uint32_t slot = findLostEncoding(translation, *m_format);
        lost = slot < m_format->slotCount ? slot + 1 : none;
        m_lost[language].store(lost, std::memory_order_relaxed);
    }
    return lost != none ? lost - 1 : none;
}

std::unique_ptr<KnownMessage> KnownMessage::make(uint32_t number, size_t languages) noexcept
{
    std::unique_ptr<KnownMessage> message(new (std::nothrow) KnownMessage(number));
    if (message == nullptr || languages == 0)
        return message;
    message->m_inLanguage.reset(new (std::nothrow) MessageInLanguage[static_cast<uint32_t>(languages)]);
    return message->m_inLanguage != nullptr ? std::move(message) : nullptr;
}

KnownMessage::~KnownMessage()
{
    std::unique_ptr<SourceText> source(m_sources.load(std::memory_order_relaxed));
    while (source != nullptr)
        source = std::move(source->m_next);
}

const SourceText *KnownMessage::findSource(const char *text, size_t length) const noexcept
{
    const SourceText *source = m_sources.load(std::memory_order_acquire);
    while (source != nullptr && !source->is(text, length))
        source = source->m_next.get();
    return source;
}

const SourceText *KnownMessage::keepSource(std::unique_ptr<SourceText> &source) noexcept
{
    SourceText *newest = m_sources.load(std::memory_order_acquire);
    for (;;)
    {
        for (const SourceText *there = newest; there != nullptr; there = there->m_next.get())
            if (there->is(source->text(), source->m_length))
                return there;
        source->m_count = newest != nullptr ? newest->m_count + 1 : 1;
        if (source->m_count > mostSources || source->m_result == KT_ERR_NO_MEMORY) // memory may be there the next time
            return source.get();
        source->m_next.reset(newest);
        const bool isKept = m_sources.compare_exchange_strong(newest, source.get(), std::memory_order_acq_rel);
        if (isKept)
            return source.release();
        static_cast<void>(source->m_next.release()); // another thread has added one
    }
}

} // namespace kelto
