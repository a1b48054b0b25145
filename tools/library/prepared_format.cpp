#include "library/prepared_format.h"

#include "failure.h"
#include "io/charset.h"
#include "library/language_conversions.h"
#include "text.h"

namespace tool
{

PreparedFormat::PreparedFormat(const std::string &format, formTable *forms)
    : m_forms(forms), m_result(KTPrepareFormat(format.c_str(), forms, &m_prepared))
{
}

PreparedFormat::PreparedFormat(MessageTable *table, unsigned id, const std::string &language)
    : m_forms(conversionsOf(language)), m_result(KTPrepareMessage(table, id, language.c_str(), m_forms, &m_prepared))
{
}

std::vector<KTSlot> PreparedFormat::slots() const
{
    const KTSlot *first = nullptr;
    const size_t count = KTPreparedSlots(m_prepared, &first);
    return {first, first + count};
}

int PreparedFormat::format(unsigned options, const std::vector<KTArgument> &arguments, std::string &utf8) const
{
    constexpr size_t usuallyEnough = 256;
    utf8.resize(usuallyEnough);
    for (;;)
    {
        size_t size = utf8.size();
        const int result =
            KTFormatPreparedUTF8(m_prepared, options, nullptr, &size, utf8.data(), arguments.data(), arguments.size());
        if (result == KT_ERR_BUFFER_TOO_SMALL && size >= longestText)
            throw Failure(say(Text::textTooLong, {size}));
        utf8.resize(result == KT_ERR_BUFFER_TOO_SMALL ? size + 1 : size);
        if (result != KT_ERR_BUFFER_TOO_SMALL)
            return result;
    }
}

} // namespace tool
