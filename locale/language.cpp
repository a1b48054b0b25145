#include "language.h"

#include <cstring>

using kelto::locale::kindCount;
using kelto::locale::kinds;

KTLLanguage::~KTLLanguage()
{
    for (const KTFormatter &record : records)
        KTRegisterUTF8Format(&record, nullptr);
}

int KTLLanguage::open(const char *locale, const char *timeZone, formTable *behind) noexcept
{
    if (const int result = name.make(locale))
        return result;
    if (const int result = dates.setZone(name.icu, timeZone))
        return result;
    table = {true, {}, records, nullptr, behind};
    for (size_t i = 0; i < kindCount; ++i)
    {
        const kelto::locale::Kind &kind = kinds[i];
        conversions[i].kind = &kind;
        conversions[i].language = this;
        std::strcpy(conversions[i].name, kind.name);
        records[i] = {conversions[i].name, nullptr, kind.argCount, kind.argTypes, kelto::locale::formatUnits};
        int &place = table.letterIndex[kind.name[0] - 'a'];
        if (place == 0)
            place = static_cast<int>(i) + 1;
        if (const int result = KTRegisterUTF8Format(&records[i], kelto::locale::formatUTF8))
            return result;
    }
    records[kindCount] = {nullptr, nullptr, 0, nullptr, nullptr};
    return 0;
}
