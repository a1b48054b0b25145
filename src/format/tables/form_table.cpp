#include "format/tables/form_table.h"

#include "lifecycle/global_state.h"
#include "platform/scoped.h"
#include "strconv/ascii.h"

#include <cstring>

// A name is looked up in one table after the other. In an indexed table the search begins at the first record of the
// name's letter and ends with the last one; in others it covers the whole list. The first record of the name decides,
// also where it is unusable.

namespace
{

constexpr size_t listLength = sizeof builtInFormList / sizeof builtInFormList[0];

/** The conversions of a reduced copy. */
constexpr const char *printfLikeNames = "duUoxXfcs";

template <typename Unit> bool isSameName(const char *known, const kelto::ConversionName<Unit> &name)
{
    size_t i = 0;
    do
        if (static_cast<Unit>(known[i]) != name.begin[i])
            return false;
    while (++i < name.length);
    return known[i] == '\0';
}

/** A record that a format call can use: it has a function, and as many slots as its argument types say. */
bool isUsable(const KTFormatter &record)
{
    if (record.format == nullptr || record.argTypes == nullptr)
        return false;
    int slots = 0;
    for (const int *type = record.argTypes; *type != KT_ARG_END; ++type)
        slots += kelto::takesSlot(*type) ? 1 : 0;
    return slots == record.argCount;
}

/** What the two short names of 64-bit integers, which only the built-in table knows, stand for; or CONV_UNKNOWN. */
template <typename Unit> Flag_t shortNameType(const kelto::ConversionName<Unit> &name, int flags)
{
    if (name.length == 0 && (flags & FLAG_l) != 0)
        return CONV_d;
    return name.length == 2 && name.begin[0] == 'u' && name.begin[1] == 'l' ? CONV_u : CONV_UNKNOWN;
}

/** The record of a name in one table, or null. */
template <typename Unit> KTFormatter *findInTable(const kelto::ConversionName<Unit> &name, const formTable &table)
{
    if (table.formList == nullptr || name.length == 0)
        return nullptr;
    const unsigned letter = kelto::letterOf(name.begin[0]);
    if (letter >= kelto::letterCount)
        return nullptr;
    KTFormatter *record = table.formList;
    if (table.indexed)
    {
        const int place = table.letterIndex[letter];
        if (place == 0)
            return nullptr;
        record += place - 1;
    }
    for (; record->name != nullptr; ++record)
    {
        if (isSameName(record->name, name))
            return record;
        if (table.indexed && kelto::letterOf(record->name[0]) != letter)
            break;
    }
    return nullptr;
}

constexpr kelto::FoundConversion unknown = {nullptr, CONV_UNKNOWN, 0};

/** Searches one table. @return whether the search ends here; `found` is its outcome then, and unknown otherwise. */
template <typename Unit>
bool searchTable(const kelto::ConversionName<Unit> &name, int flags, formTable &table, kelto::FoundConversion &found)
{
    const bool isBuiltIn = &table == &builtInFormTable;
    found = unknown;
    if (isBuiltIn)
        if (const Flag_t type = shortNameType(name, flags); type != CONV_UNKNOWN)
        {
            found = {&builtInFormList[type], type, FLAG_BANG};
            return true;
        }
    KTFormatter *const record = findInTable(name, table);
    if (record == nullptr)
        return false;
    if (isBuiltIn)
        found = {record, static_cast<Flag_t>(record - table.formList), 0};
    else if (isUsable(*record))
        found = {record, CONV_EXTERNAL, 0};
    return true;
}

/** Kept apart from the search of the first table, which is mostly the only one and small enough to be inlined. */
template <typename Unit>
[[gnu::noinline]] kelto::FoundConversion findAlongChain(kelto::ConversionName<Unit> name, int flags, formTable *table)
{
    kelto::FoundConversion found = unknown;
    while (table != nullptr && !searchTable(name, flags, *table, found))
        table = table->nextTable;
    return found;
}

size_t namesSize()
{
    size_t size = 0;
    for (const KTFormatter *record = builtInFormList; record->name != nullptr; ++record)
        size += std::strlen(record->name) + 1;
    return size;
}

KTEncoder encoderOf(const formTable &table)
{
    return __atomic_load_n(&table.encoder, __ATOMIC_RELAXED);
}

/** Lays a copy of the built-in table out in one block: the table, its records, their names. */
formTable *copyBuiltInTable(bool printfLikeOnly)
{
    static_assert(sizeof(formTable) % alignof(KTFormatter) == 0);
    auto block = kelto::allocate<char>(glbResHandle, sizeof(formTable) + sizeof builtInFormList + namesSize());
    if (block == nullptr)
        return nullptr;
    auto *copy = reinterpret_cast<formTable *>(block.release());
    auto *records = reinterpret_cast<KTFormatter *>(copy + 1);
    auto *names = reinterpret_cast<char *>(records + listLength);

    // The table is copied field by field, since another thread may be changing its encoder.
    copy->indexed = builtInFormTable.indexed;
    std::memcpy(copy->letterIndex, builtInFormTable.letterIndex, sizeof copy->letterIndex);
    copy->formList = records;
    copy->encoder = encoderOf(builtInFormTable);
    copy->nextTable = nullptr;
    std::memcpy(static_cast<void *>(records), builtInFormList, sizeof builtInFormList);
    for (KTFormatter *record = records; record->name != nullptr; ++record)
    {
        const size_t size = std::strlen(record->name) + 1;
        std::memcpy(names, record->name, size);
        record->name = names;
        // An empty name is never found, and ends the search of its letter, whose kept names stand before it.
        const bool isKept = !printfLikeOnly || (size == 2 && std::strchr(printfLikeNames, names[0]) != nullptr);
        if (!isKept)
            names[0] = '\0';
        names += size;
    }
    return copy;
}

} // namespace

namespace kelto
{

template <typename Unit>
FoundConversion findConversion(const ConversionName<Unit> &name, int flags, formTable &first) noexcept
{
    FoundConversion found;
    if (searchTable(name, flags, first, found) || first.nextTable == nullptr)
        return found;
    return findAlongChain(name, flags, first.nextTable);
}

template FoundConversion findConversion(const ConversionName<UCS2> &, int, formTable &) noexcept;
template FoundConversion findConversion(const ConversionName<char> &, int, formTable &) noexcept;

KTEncoder findEncoder(formTable *table) noexcept
{
    for (; table != nullptr; table = table->nextTable)
        if (const KTEncoder encoder = encoderOf(*table))
            return encoder;
    return nullptr;
}

} // namespace kelto

int KTGetBuiltInFormTable(int options, formTable **table)
{
    constexpr int copyOption = 1;
    constexpr int printfLikeOption = 2;
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    *table = (options & copyOption) != 0 ? copyBuiltInTable((options & printfLikeOption) != 0) : &builtInFormTable;
    return *table != nullptr ? 0 : KT_ERR_NO_MEMORY;
}

int KTRegisterEncoder(KTEncoder encoder)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    const kelto::MutexGuard guard(formTableMutex);
    __atomic_store_n(&builtInFormTable.encoder, encoder, __ATOMIC_RELAXED);
    return 0;
}

int KTGetFormTableSize(void)
{
    return 0;
}

int KTFreeFormTable(formTable *table)
{
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (table != nullptr && table != &builtInFormTable)
        ZEL_free(table);
    return 0;
}
