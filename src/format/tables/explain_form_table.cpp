// KTExplainFormTable(): what is wrong with a table of the program's own.

#include "format/output/format_output.h"
#include "format/tables/form_table.h"
#include "format/tables/own_table.h"

#include <algorithm>
#include <string_view>

namespace
{

/** Whether a format can name a conversion: the letters of the modifiers would be taken for one. */
bool canBeNamed(std::string_view name)
{
    const char first = name.empty() ? '\0' : name[0];
    const bool isLetter = (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z');
    if (!isLetter || first == 'h' || first == 'l' || first == 'L' || name == "N" || name == "O" ||
        name.size() > kelto::maxNameLength)
        return false;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return c != '[' && static_cast<unsigned char>(c) < 0x80; });
}

bool takesPointer(const KTFormatter &record)
{
    for (const int *type = record.argTypes; type != nullptr && *type != KT_ARG_END; ++type)
        if (*type == KT_ARG_POINTER)
            return true;
    return false;
}

/** All that is wrong with a table, with colons in between. */
class Faults
{
public:
    Faults(char *out, size_t *size) : m_text(out, size, kelto::Beginning::kept) {}

    void tell(std::string_view before, std::string_view name = {}, std::string_view behind = {})
    {
        for (const std::string_view part : {std::string_view(m_isFirst ? "" : ": "), before, name, behind})
            m_text.write(kelto::Ending::open, kelto::UTF8Text{part.data(), part.size(), UINT64_MAX});
        m_isFirst = false;
    }

    int finish(size_t *size)
    {
        m_text.finish(size);
        return m_isFirst ? 0 : KT_ERR_INVALID_PARAMETER;
    }

private:
    kelto::FormatOutput<char> m_text;
    bool m_isFirst = true;
};

template <typename Take> void forEachRecord(const formTable &table, Take take)
{
    for (const KTFormatter *record = table.formList; record != nullptr && record->name != nullptr; ++record)
        take(*record);
}

} // namespace

int KTExplainFormTable(const formTable *table, KTFormatFunction asking, unsigned options, size_t *size, char *text)
{
    if (table == nullptr || size == nullptr || (text == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    Faults faults(text, size);
    forEachRecord(*table, [&](const KTFormatter &record) {
        if (!canBeNamed(record.name))
            faults.tell("no conversion can have the name \"", record.name, "\"");
    });
    for (const formTable *each = table; each != nullptr; each = each->nextTable)
        forEachRecord(*each, [&](const KTFormatter &record) {
            if (record.format != asking && !kelto::isOwnConversion(record) && takesPointer(record))
                faults.tell("the conversion \"", record.name, "\" takes a pointer of no type");
        });
    if ((options & KT_ENCODE_ALL) != 0 && kelto::findEncoder(const_cast<formTable *>(table)) == nullptr)
        faults.tell("there is no encoder that could be applied everywhere");
    return faults.finish(size);
}
