// "unit": a double and the name of its unit of measure, as "kilometer-per-hour".

#include "conversions.h"
#include "decimals.h"
#include "language.h"

namespace kelto::locale
{

namespace
{

bool isUnitName(std::string_view name)
{
    constexpr std::string_view inName = "abcdefghijklmnopqrstuvwxyz0123456789-";
    return !name.empty() && name.size() <= maxUnitName && name.find_first_not_of(inName) == std::string_view::npos;
}

} // namespace

int writeUnit(KTLLanguage &language, const Kind & /*kind*/, const Spec &spec, const Value *values, Output &output)
{
    const std::string_view name = values[1].text;
    if (!isUnitName(name))
        return KT_ERR_INVALID_PARAMETER;
    NumberKey key(unitNumber);
    key.isLong = spec.has(FLAG_HASH);
    key.isTrimmed = spec.precision < 0;
    key.what[name.copy(key.what, name.size())] = '\0';
    return writeDouble(language, key, spec, values[0].number, output);
}

} // namespace kelto::locale
