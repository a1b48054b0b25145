#include "catalog/plain_text.h"

#include "format/arguments/typed_argument.h"
#include "format/formatters/integer.h"
#include "strconv/heap_block.h"

#include <cstdio>
#include <iterator>
#include <unicode/utf8.h>

namespace
{

using kelto::FormatOutput;
using kelto::writeUTF8;

/** Whether a text is a time as "%DT[1]" takes it. */
bool isTime(std::string_view text)
{
    constexpr std::string_view pattern = "0000-00-00'T00:00:00Z";
    bool isOne = text.size() == pattern.size();
    for (size_t i = 0; isOne && i < pattern.size(); ++i)
        isOne = (text[i] >= '0' && text[i] <= '9' ? '0' : text[i]) == pattern[i];
    return isOne;
}

template <typename Unit> void writeTextArgument(FormatOutput<Unit> &out, const KTArgument &argument)
{
    const auto value = kelto::utf8Of(argument);
    const std::string_view text(value.begin, value.length);
    if (!isTime(text))
        return writeUTF8(out, text);
    writeUTF8(out, text.substr(0, 10));
    writeUTF8(out, " ");
    writeUTF8(out, text.substr(12, 8));
}

/** Writes what a function of the program's writes: int(size_t *size, char *out). @return false where it fails. */
template <typename Unit, typename Write> bool writeBy(FormatOutput<Unit> &out, const Write &write)
{
    char usual[256];
    size_t room = sizeof usual;
    size_t size = room;
    kelto::HeapBlock<char> whole;
    char *text = usual;
    int result = write(&size, usual);
    if (result == KT_ERR_BUFFER_TOO_SMALL)
    {
        room = ++size;
        whole = kelto::allocateHeap<char>(room);
        text = whole.get();
        result = text != nullptr ? write(&size, text) : KT_ERR_NO_MEMORY;
    }
    if (result != 0 || size > room) // a size beyond its room is not believed
        return false;
    writeUTF8(out, std::string_view(text, size));
    return true;
}

template <typename Unit> void writeObject(FormatOutput<Unit> &out, const KTObject &object)
{
    const KTObjectType &type = *object.type;
    if (type.write != nullptr &&
        writeBy(out, [&](size_t *size, char *text) { return type.write(object.object, size, text); }))
        return;
    writeUTF8(out, "(");
    writeUTF8(out, std::string_view(type.name, type.nameLength));
    writeUTF8(out, ")");
}

template <typename Unit>
void writePointer(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options)
{
    if (argument.length == KT_KIND_OBJECT && argument.value.p != nullptr)
        return writeObject(out, *static_cast<const KTObject *>(argument.value.p));
    const bool isWritten = options.writeArgument != nullptr && writeBy(out, [&](size_t *size, char *text) {
                               return options.writeArgument(options.context, &argument, size, text);
                           });
    if (!isWritten)
        writeUTF8(out, "(pointer)");
}

template <typename Unit, typename Value> void writeReal(FormatOutput<Unit> &out, const char *format, Value value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    writeUTF8(out, text);
}

} // namespace

namespace kelto
{

template <typename Unit> void writeNumber(FormatOutput<Unit> &out, uint64_t number, bool isNegative) noexcept
{
    char digits[21];
    char *begin = writeDecimal(std::end(digits), isNegative ? 0 - number : number);
    if (isNegative)
        *--begin = '-';
    writeUTF8(out, {begin, static_cast<size_t>(std::end(digits) - begin)});
}

template <typename Unit>
void writePlainly(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options) noexcept
{
    switch (argument.type)
    {
    case KT_ARGUMENT_INT:
    case KT_ARGUMENT_INT64:
        return writeNumber(out, argument.value.u, argument.value.i < 0);
    case KT_ARGUMENT_UINT:
    case KT_ARGUMENT_UINT64:
        return writeNumber(out, argument.value.u, false);
    case KT_ARGUMENT_CHAR:
    case KT_ARGUMENT_UNIT:
    {
        const auto unit = static_cast<UCS2>(argument.value.u);
        out.write(Ending::open, UCS2Text{&unit, unit != 0 ? 1U : 0U});
        return;
    }
    case KT_ARGUMENT_DOUBLE:
        return writeReal(out, "%g", argument.value.d);
    case KT_ARGUMENT_LONG_DOUBLE:
        if (argument.value.p == nullptr)
            break;
        return writeReal(out, "%Lg", *static_cast<const long double *>(argument.value.p));
    case KT_ARGUMENT_UTF8:
        return writeTextArgument(out, argument);
    case KT_ARGUMENT_UCS2:
    case KT_ARGUMENT_CODE_POINT:
    {
        const auto value = ucs2Of(argument);
        out.write(Ending::open, UCS2Text{value.begin, value.length});
        return;
    }
    case KT_ARGUMENT_POINTER:
        return writePointer(out, argument, options);
    default:
        break;
    }
    writeUTF8(out, "(none)");
}

template void writeNumber(FormatOutput<char> &, uint64_t, bool) noexcept;
template void writeNumber(FormatOutput<UCS2> &, uint64_t, bool) noexcept;
template void writePlainly(FormatOutput<char> &, const KTArgument &, const KTCatalogOptions &) noexcept;
template void writePlainly(FormatOutput<UCS2> &, const KTArgument &, const KTCatalogOptions &) noexcept;

} // namespace kelto

size_t KTCutUTF8(const char *text, size_t size, size_t most)
{
    if (size <= most)
        return size;
    while (most > 0 && U8_IS_TRAIL(text[most]))
        --most;
    return most;
}

int KTArgumentText(const KTArgument *argument, size_t *size, char *text)
{
    if (argument == nullptr || size == nullptr || (text == nullptr && *size != 0))
        return KT_ERR_INVALID_PARAMETER;
    FormatOutput<char> out(text, size, kelto::Beginning::kept);
    kelto::writePlainly(out, *argument, KTCatalogOptions{});
    return out.finish(size);
}
