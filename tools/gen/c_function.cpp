#include "gen/c_function.h"

#include <fmt/core.h>

namespace tool::gen
{
namespace
{

/** How an argument for a slot is declared, and what makes a KTArgument of it; "" where it is one. */
struct Parameter
{
    const char *type;
    const char *maker;
};

// By KTSlotCode.
constexpr Parameter parameterKinds[] = {
    {"KTArgument ", ""},
    {"int16_t ", "KT_INT"},
    {"uint16_t ", "KT_UINT"},
    {"int32_t ", "KT_INT"},
    {"uint32_t ", "KT_UINT"},
    {"int64_t ", "KT_INT64"},
    {"uint64_t ", "KT_UINT64"},
    {"char ", "KT_CHAR"},
    {"UCS2 ", "KT_UNIT"},
    {"double ", "KT_DOUBLE"},
    {"const long double *", "KT_LONG_DOUBLE"},
    {"const char *", "KT_UTF8"},
    {"const UCS2 *", "KT_UCS2"},
    {"KTArgument ", ""}, // the program's KT_POINTER, which says of what kind
};

const Parameter &parameterOf(uint32_t slotCode)
{
    return parameterKinds[slotCode < std::size(parameterKinds) ? slotCode : 0];
}

} // namespace

std::optional<std::vector<uint32_t>> slotCodesOf(const std::string &text, formTable *table)
{
    KTPreparedFormat *prepared = nullptr;
    if (KTPrepareFormat(text.c_str(), table, &prepared) != 0)
        return std::nullopt;
    const KTSlot *slots = nullptr;
    std::vector<uint32_t> codes;
    for (size_t i = 0, count = KTPreparedSlots(prepared, &slots); i < count; ++i)
        codes.push_back(slots[i].code);
    KTFreePrepared(prepared);
    return codes;
}

std::string formattingCFunction(const CFunction &function, const std::vector<std::string> &parameters, formTable *table)
{
    std::vector<uint32_t> codes = slotCodesOf(function.text, table).value_or(std::vector<uint32_t>());
    codes.resize(parameters.size());
    std::string declared;
    std::string made;
    for (size_t i = 0; i < parameters.size(); ++i)
    {
        const Parameter &kind = parameterOf(codes[i]);
        declared += fmt::format(", {}{}", kind.type, parameters[i]);
        made += fmt::format(*kind.maker != '\0' ? "{}{}({})" : "{}{}{}", made.empty() ? "" : ", ", kind.maker,
                            parameters[i]);
    }
    const std::string list = made.empty() ? "" : fmt::format("    const KTArgument arguments_[] = {{{}}};\n", made);
    return fmt::format("static inline int {}(const KTCatalog *catalog, size_t *size, char *out{})\n"
                       "{{\n{}    return KTCatalogFormatUTF8(catalog, {}, {}, size, out, {}, {});\n}}\n",
                       function.name, declared, list, function.id, function.literal,
                       made.empty() ? "NULL" : "arguments_", parameters.size());
}

std::string fetchingCFunction(const CFunction &function)
{
    return fmt::format("static inline const char *{}(const KTCatalog *catalog)\n"
                       "{{\n    const char *const text = KTCatalogText(catalog, {});\n\n"
                       "    return text != NULL ? text : {};\n}}\n",
                       function.name, function.id, function.literal);
}

} // namespace tool::gen
