#include "format/variants/nil_conversion.h"

#include "format/tables/form_table.h"
#include "lifecycle/global_state.h"

namespace
{

KTFormatter nilList[] = {{"nil", nullptr, 1, signedIntList, kelto::formatNil}, {nullptr, nullptr, 0, nullptr, nullptr}};

formTable nilTable = {false, {}, nilList, nullptr, &builtInFormTable};

} // namespace

namespace kelto
{

// "nil" fits where there is no room at all, as "IP" does.
int formatNil(const char * /*convName*/, int /*width*/, int /*precision*/, int /*flags*/, KTEncoder /*passThru1*/,
              void * /*passThru2*/, void ** /*argSlot*/, unsigned long *sizeInOut, UCS2 * /*out*/) noexcept
{
    *sizeInOut = 0;
    return 0;
}

formTable &variantFormTable() noexcept
{
    return nilTable;
}

WithNil::WithNil(formTable *table) noexcept : m_front(nilTable), m_table(table)
{
    const ConversionName<char> nil = {nilList[0].name, 3};
    if (table == nullptr)
        m_table = &nilTable;
    else if (findConversion(nil, 0, *table).formatter == nullptr)
    {
        m_front.nextTable = table;
        m_table = &m_front;
    }
}

} // namespace kelto

int KTGetVariantFormTable(formTable **table)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (table == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    *table = &nilTable;
    return 0;
}
