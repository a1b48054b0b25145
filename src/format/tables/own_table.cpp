#include "format/tables/own_table.h"

#include "format/arguments/typed_argument.h"
#include "format/conversion_record.h"
#include "format/output/finished_text.h"
#include "format/output/format_output.h"
#include "format/tables/form_table.h"
#include "strconv/heap_block.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace
{

/** A function of the program's with its context, which ends with it. */
struct OwnFunction
{
    KTOwnFunction call = nullptr;
    void *context = nullptr;
    KTFreeFunction freeContext = nullptr;

    OwnFunction() = default;
    ~OwnFunction() { set(nullptr, nullptr, nullptr); }
    OwnFunction(const OwnFunction &) = delete;
    OwnFunction &operator=(const OwnFunction &) = delete;

    void set(KTOwnFunction newCall, void *newContext, KTFreeFunction newFree) noexcept
    {
        if (freeContext != nullptr)
            freeContext(context);
        call = newCall;
        context = newContext;
        freeContext = newFree;
    }
};

struct OwnConversion
{
    // Comes first, since a call is told its address; a unit more than a name can have, so that a longer one shows.
    char name[kelto::maxNameLength + 2] = {};
    const int *types = nullptr;
    uint32_t kind = 0;
    OwnFunction function;
    OwnConversion *next = nullptr;
};

int countSlots(const int *types)
{
    int count = 0;
    for (; types != nullptr && *types != KT_ARG_END; ++types)
        count += kelto::takesSlot(*types) ? 1 : 0;
    return count;
}

} // namespace

/** All of it comes from the C heap, since a table may be built before the library is started. */
struct KTOwnTable
{
    formTable table = {};
    kelto::HeapBlock<KTFormatter> records;
    OwnConversion *first = nullptr;
    OwnConversion **end = &first;
    OwnFunction encoder;
    int encoderCode = KT_ARG_UTF8;
    unsigned options = 0;
    bool isUse = false;       // whether it holds a use of the library
    bool lacksMemory = false; // for something that was to be added

    KTOwnTable() = default;
    [[gnu::visibility("hidden")]] ~KTOwnTable(); // kelto.h names the type, and none of its functions
    KTOwnTable(const KTOwnTable &) = delete;
    KTOwnTable &operator=(const KTOwnTable &) = delete;

    [[gnu::visibility("hidden")]] int finish(formTable *next, unsigned formatOptions) noexcept;
};

namespace
{

thread_local const KTOwnTable *runningTable = nullptr;

/** Where the text of a call goes. */
struct OwnOutput
{
    bool isOfEncoder;
    KTEncoder encoder; // what the text goes through, or null
    unsigned long room;
    unsigned long *size;
    UCS2 *out;
    int result;
};

/** Writes a text as the call wants it cut and padded. */
int writeLaidOut(const KTOwnCall &call, const KTArgument &text, unsigned long *size, UCS2 *out)
{
    const kelto::Layout layout = {call.width, call.precision, call.flags};
    kelto::FormatOutput<UCS2> written(out, size);
    if (text.type == KT_ARGUMENT_UTF8)
    {
        const auto value = kelto::utf8Of(text);
        const uint64_t units = layout.width > 0 ? kelto::countUnits(value.begin, value.length) : UINT64_MAX;
        kelto::writeText(written, layout, kelto::UTF8Text{value.begin, value.length, units});
    }
    else
    {
        const auto value = kelto::ucs2Of(text);
        kelto::writeText(written, layout, kelto::UCS2Text{value.begin, value.length});
    }
    return written.finish(size);
}

/** Gives a text as encoders do: what fits of it, and the length of the whole. */
int writeEncoded(const UCS2 *text, const OwnOutput &output)
{
    const size_t length = KTUCS2strlen(text);
    std::copy_n(text, std::min<size_t>(length, output.room), output.out);
    *output.size = length;
    return 0;
}

/** Calls a function for a text, which is empty where the function gives none. */
int callOwn(const OwnFunction &function, KTOwnCall &call, OwnOutput &output)
{
    call.structSize = sizeof call;
    call.output = &output;
    output.result = output.isOfEncoder || kelto::fits(0, output.room) ? 0 : KT_ERR_BUFFER_TOO_SMALL;
    int result = function.call(function.context, &call);
    if (result == 0)
        result = output.result;
    if (result != 0 && result != KT_ERR_BUFFER_TOO_SMALL)
        *output.size = 0;
    return result;
}

/** The function in all records of conversions with a context. */
int convertOwn(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
               void **argSlot, unsigned long *sizeInOut, UCS2 *out) // NOLINT(readability-non-const-parameter)
{
    const auto &own = *reinterpret_cast<const OwnConversion *>(convName);
    OwnOutput output = {false, (flags & FLAG_ENCODE) != 0 ? passThru1 : nullptr, *sizeInOut, sizeInOut, out, 0};
    *sizeInOut = 0;
    constexpr size_t few = 8;
    KTArgument usual[few];
    kelto::HeapBlock<KTArgument> many;
    const auto count = static_cast<size_t>(countSlots(own.types));
    if (count > few)
        many = kelto::allocateHeap<KTArgument>(count);
    if (count > few && many == nullptr)
        return KT_ERR_NO_MEMORY;
    KTArgument *const values = count > few ? many.get() : usual;
    size_t slot = 0;
    for (const int *type = own.types; *type != KT_ARG_END; ++type)
    {
        if (!kelto::takesSlot(*type))
            continue;
        values[slot] = *type == KT_ARG_POINTER ? KT_POINTER(own.kind, KTPointerOfKind(argSlot + slot, own.kind))
                                               : KTSlotArgument(argSlot + slot, *type, flags);
        if (*type == KT_ARG_POINTER && values[slot].value.p == nullptr)
            return KT_ERR_INVALID_PARAMETER;
        ++slot;
    }
    KTOwnCall call = {0, own.name, width, precision, flags, passThru2, values, count, nullptr};
    return callOwn(own.function, call, output);
}

} // namespace

int kelto::encodeOwn(const void *value, int dataType, unsigned long *sizeInOut,
                     UCS2 *out) // NOLINT(readability-non-const-parameter)
{
    OwnOutput output = {true, nullptr, *sizeInOut, sizeInOut, out, 0};
    *sizeInOut = 0;
    const KTOwnTable *const own = runningTable;
    if (own == nullptr)
        return KT_ERR_INVALID_PARAMETER;
    UCS2 character[2] = {0, 0};
    if (dataType == KT_ENCODE_CHARACTER)
        *character = *static_cast<const unsigned char *>(value);
    else if (dataType == KT_ENCODE_UNIT)
        *character = *static_cast<const UCS2 *>(value);
    if (U16_IS_SURROGATE(*character)) // half of a character has nothing to encode
        return writeEncoded(character, output);
    const UCS2 *const text = dataType == KT_ENCODE_UCS2 ? static_cast<const UCS2 *>(value) : character;
    KTArgument argument = KT_UCS2(text);
    kelto::HeapBlock<char> bytes;
    if (own->encoderCode == KT_ARG_UTF8)
    {
        constexpr size_t bytesPerUnit = 3;
        size_t size = bytesPerUnit * KTUCS2strlen(text) + 1;
        bytes = kelto::allocateHeap<char>(size);
        if (bytes == nullptr)
            return KT_ERR_NO_MEMORY;
        if (const int result = KTUCS2ToUTF8(text, &size, bytes.get()))
            return result;
        argument = KT_UTF8(bytes.get());
    }
    KTOwnCall call = {0, "", KT_ABSENT, KT_ABSENT, 0, nullptr, &argument, 1, nullptr};
    return callOwn(own->encoder, call, output);
}

namespace
{

/**
 * The table whose encoder a call gets, where that encoder has a context; else null. Tables may be copied: where a
 * table's state is stands in a member that is not read of a table without an index.
 */
const KTOwnTable *findOwnEncoder(const formTable *table)
{
    while (table != nullptr && __atomic_load_n(&table->encoder, __ATOMIC_RELAXED) == nullptr)
        table = table->nextTable;
    const KTOwnTable *own = nullptr;
    if (table != nullptr && !table->indexed && table->encoder == kelto::encodeOwn)
        std::memcpy(&own, table->letterIndex, sizeof(void *));
    return own;
}

/** Stores why a table is of no use. */
void tell(int result, size_t *size, char *text)
{
    const std::string_view why = KTResultText(result);
    kelto::FormatOutput<char> told(text, size, kelto::Beginning::kept);
    told.write(kelto::Ending::open, kelto::UTF8Text{why.data(), why.size(), UINT64_MAX});
    told.finish(size);
}

} // namespace

KTOwnTable::~KTOwnTable()
{
    while (first != nullptr)
        delete std::exchange(first, first->next);
    if (isUse)
        KTEndUse();
}

/** Makes the records, and begins the use of the library. */
int KTOwnTable::finish(formTable *next, unsigned formatOptions) noexcept
{
    if ((formatOptions & ~unsigned{KT_ENCODE_ALL}) != 0 || records != nullptr)
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = KTBeginUse())
        return result;
    isUse = true;
    size_t count = 0;
    for (const OwnConversion *each = first; each != nullptr; each = each->next)
        ++count;
    if (!lacksMemory)
        records = kelto::allocateHeap<KTFormatter>(count + 1);
    if (records == nullptr)
        return KT_ERR_NO_MEMORY;
    KTFormatter *record = records.get();
    for (const OwnConversion *each = first; each != nullptr; each = each->next)
        *record++ = {each->name, nullptr, countSlots(each->types), each->types, convertOwn};
    *record = {};
    const KTOwnTable *const self = this;
    static_assert(sizeof(void *) <= sizeof table.letterIndex);
    std::memcpy(table.letterIndex, &self, sizeof(void *));
    table.formList = records.get();
    table.encoder = encoder.call != nullptr ? kelto::encodeOwn : nullptr;
    table.nextTable = next != nullptr ? next : &builtInFormTable;
    options = formatOptions;
    return 0;
}

namespace kelto
{

void RunningEncoder::enter(const formTable *table) noexcept
{
    m_outer = runningTable;
    runningTable = findOwnEncoder(table);
}

void RunningEncoder::leave() noexcept
{
    runningTable = m_outer;
}

unsigned optionsOf(const formTable *table) noexcept
{
    const KTOwnTable *const own = findOwnEncoder(table);
    return own != nullptr ? own->options : 0;
}

bool isOwnConversion(const KTFormatter &record) noexcept
{
    return record.format == convertOwn;
}

} // namespace kelto

KTOwnTable *KTNewOwnTable(void)
{
    return new (std::nothrow) KTOwnTable;
}

void KTAddConversion(KTOwnTable *own, const char *name, const int *types, uint32_t kind, KTOwnFunction function,
                     void *context, KTFreeFunction freeContext)
{
    auto *const added = own != nullptr ? new (std::nothrow) OwnConversion : nullptr;
    if (added == nullptr)
    {
        if (own != nullptr)
            own->lacksMemory = true;
        if (freeContext != nullptr)
            freeContext(context);
        return;
    }
    added->name[std::string_view(name).copy(added->name, sizeof added->name - 1)] = '\0';
    added->types = types;
    added->kind = kind;
    added->function.set(function, context, freeContext);
    *own->end = added;
    own->end = &added->next;
}

void KTSetEncoder(KTOwnTable *own, int code, KTOwnFunction function, void *context, KTFreeFunction freeContext)
{
    if (own == nullptr)
    {
        if (freeContext != nullptr)
            freeContext(context);
        return;
    }
    own->encoderCode = code;
    own->encoder.set(function, context, freeContext);
}

int KTFinishOwnTable(KTOwnTable *own, formTable *next, unsigned options, formTable **table, size_t *size, char *text)
{
    if (table != nullptr)
        *table = nullptr;
    if (table == nullptr || size == nullptr || (text == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    if (const int result = own != nullptr ? own->finish(next, options) : KT_ERR_NO_MEMORY)
    {
        tell(result, size, text);
        return result;
    }
    const int result = KTExplainFormTable(&own->table, convertOwn, options, size, text);
    *table = result == 0 ? &own->table : nullptr;
    return result;
}

void KTFreeOwnTable(KTOwnTable *own)
{
    delete own;
}

int KTGiveText(KTOwnCall *call, KTArgument text)
{
    auto &output = *static_cast<OwnOutput *>(call->output);
    const bool isText =
        text.type == KT_ARGUMENT_UTF8 || text.type == KT_ARGUMENT_UCS2 || text.type == KT_ARGUMENT_CODE_POINT;
    if (!isText)
        return output.result = KT_ERR_INVALID_PARAMETER;
    if (output.encoder == nullptr && !output.isOfEncoder)
    {
        *output.size = output.room;
        return output.result = writeLaidOut(*call, text, output.size, output.out);
    }
    kelto::FinishedText whole;
    const auto write = [&](unsigned long *size, UCS2 *out) { return writeLaidOut(*call, text, size, out); };
    output.result = whole.make(write, ~0UL);
    if (output.result != 0)
        return output.result;
    if (output.isOfEncoder)
        return output.result = writeEncoded(whole.units(), output);
    void *slot = const_cast<UCS2 *>(whole.units());
    *output.size = output.room;
    return output.result = formatUCS2Str(nullptr, KT_ABSENT, KT_ABSENT, call->flags, output.encoder, nullptr, &slot,
                                         output.size, output.out);
}
