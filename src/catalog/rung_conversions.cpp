#include "catalog/rung_conversions.h"

namespace
{

/** Whether a table is the program's own. The built-in ones and that of the language stand behind all others. */
bool isOwn(const formTable *table, const formTable *ofLanguage)
{
    formTable *variants = nullptr;
    KTGetVariantFormTable(&variants);
    return table != nullptr && table != &builtInFormTable && table != variants && table != ofLanguage;
}

} // namespace

namespace kelto
{

void RungConversions::set(const KTCatalogOptions &options, const char *language) noexcept
{
    m_table = options.table;
    if (options.conversions == nullptr)
        return;
    formTable *const ofLanguage = options.conversions(options.conversionsContext, language);
    if (ofLanguage == nullptr)
        return;
    size_t count = 0;
    for (const formTable *table = options.table; isOwn(table, ofLanguage); table = table->nextTable)
        ++count;
    if (count == 0)
    {
        m_table = ofLanguage;
        return;
    }
    m_copies = allocateHeap<formTable>(count);
    if (m_copies == nullptr)
        return;
    const formTable *table = options.table;
    for (size_t i = 0; i < count; ++i, table = table->nextTable)
    {
        m_copies[i] = *table;
        m_copies[i].nextTable = i + 1 < count ? &m_copies[i + 1] : ofLanguage;
    }
    m_table = m_copies.get();
}

} // namespace kelto
