// A format string, which ends at the first zero byte, then what decides about tables and arguments. The string is used with
// arguments of the types that it asks for, in both forms, with no table, the built-in one, copies and own ones, with and
// without encoder, and into every class of capacity.

#include "support/arguments.h"
#include "support/guarded.h"
#include "support/platform.h"
#include "support/require.h"

#include <cstdio>
#include <optional>

namespace
{

// ---- Tables ----

int writeUnits(const std::u16string &text, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    *size = text.size();
    if (text.size() + 1 > room)
        return KT_ERR_BUFFER_TOO_SMALL;
    text.copy(out, text.size());
    return 0;
}

constexpr int ownFailure = -4242;

int formatFail(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *, UCS2 *)
{
    return ownFailure;
}

int formatNone(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    return writeUnits(u"none", size, out);
}

int formatPair(const char *, int width, int, int flags, KTEncoder, void *passThru, void **slots, unsigned long *size,
               UCS2 *out)
{
    require(passThru == &ownFailure, "the pass-through pointer arrives");
    const int number =
        (flags & FLAG_h) != 0 ? *static_cast<const int16_t *>(slots[0]) : *static_cast<const int *>(slots[0]);
    const auto count = static_cast<size_t>(number & 7);
    const std::string text = static_cast<const char *>(slots[1]);
    return writeUnits(std::u16string(count + (width > 0 ? 1 : 0), u'p') + std::u16string(text.begin(), text.end()),
                      size, out);
}

int formatSkip(const char *, int, int, int, KTEncoder, void *, void **slots, unsigned long *size, UCS2 *out)
{
    return writeUnits(*static_cast<const uint64_t *>(slots[0]) % 2 == 0 ? u"even" : u"", size, out);
}

const int noTypes[] = {9, 0}, pairTypes[] = {4, 2, 0}, skipTypes[] = {8, 7, 100, 0};

KTFormatter ownList[] = {{"fail", nullptr, 1, signedIntList, formatFail},
                         {"none", nullptr, 0, noTypes, formatNone},
                         {"pair", nullptr, 2, pairTypes, formatPair},
                         {"skip", nullptr, 1, skipTypes, formatSkip},
                         {nullptr, nullptr, 0, nullptr, nullptr}};

/** Writes each unit twice, as many as fit, and tells the length of the whole; texts that begin with an 'F' fail. */
int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    std::u16string text;
    if (dataType == 1)
        text = static_cast<const UCS2 *>(value);
    else
        text = dataType == 0 ? *static_cast<const UCS2 *>(value) : static_cast<UCS2>(*static_cast<const char *>(value));
    if (dataType == 1 && !text.empty() && text[0] == u'F')
    {
        *size = 0;
        return ownFailure;
    }
    std::u16string doubled;
    for (const UCS2 unit : text)
        doubled += {unit, unit};
    doubled.copy(out, *size);
    *size = doubled.size();
    return 0;
}

/** The table of a call, made anew for each input. */
class Table
{
public:
    explicit Table(FuzzedDataProvider &source)
    {
        m_hasEncoder = source.ConsumeBool();
        require(KTRegisterEncoder(m_hasEncoder ? encode : nullptr) == 0, "an encoder is registered");
        m_own.formList = ownList;
        m_empty.nextTable = &m_own;
        m_kind = source.ConsumeIntegralInRange(0, 6);
        if (m_kind == 2 || m_kind == 3 || m_kind == 5)
            require(KTGetBuiltInFormTable(m_kind == 2 ? 1 : 3, &m_copy) == 0, "a copy is made");
        m_own.nextTable = m_copy != nullptr ? m_copy : &builtInFormTable;
        m_own.indexed = m_kind == 5;
        m_own.letterIndex['f' - 'a'] = 1;
        m_own.letterIndex['n' - 'a'] = 2;
        m_own.letterIndex['p' - 'a'] = 3;
        m_own.letterIndex['s' - 'a'] = 4;
    }
    ~Table() { require(KTFreeFormTable(m_copy) == 0, "a copy is freed"); }
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    formTable *get()
    {
        formTable *const tables[] = {nullptr, &builtInFormTable, m_copy, m_copy, &m_own, &m_own, &m_empty};
        return tables[m_kind];
    }

    bool hasEncoder() const { return m_hasEncoder; }

private:
    bool m_hasEncoder;
    formTable m_own = {}, m_empty = {};
    formTable *m_copy = nullptr;
    int m_kind;
};

// ---- Calls ----

struct Outcome
{
    int result;
    unsigned long size;
    std::u16string text; // after success
};

/** One format string with its table and its arguments. */
class Formatting
{
public:
    Formatting(std::string format, FuzzedDataProvider &source) : m_format(std::move(format)), m_table(source)
    {
        m_tag = source.ConsumeBool();
        std::u16string wide(m_format.size() + 1, u'\0');
        size_t units = wide.size();
        require(KTUTF8ToUCS2(m_format.c_str(), &units, wide.data()) == 0, "any bytes convert");
        KTParameter *parameters = nullptr;
        m_syntax = checkSyntax(wide.c_str(), m_table.get(), &parameters);
        require(m_syntax == 0 || m_syntax == KT_ERR_FORMAT_SYNTAX, "a format is accepted or refused");
        m_arguments.emplace(m_syntax == 0 ? parameters : nullptr, source);
        ZEL_free(parameters);
    }

    int syntax() const { return m_syntax; }

    void expectRefused()
    {
        const Outcome outcome = formatInto(20, Form::list, m_arguments->pointers());
        require(outcome.result == m_syntax, "a format call refuses what checkSyntax refuses");
    }

    void expectArgumentsCounted()
    {
        if (m_arguments->count() == 0)
            return;
        require(formatInto(20, Form::pointers, m_arguments->pointers() + 1).result == KT_ERR_INVALID_PARAMETER,
                "a missing argument is noticed");
    }

    Outcome format(size_t capacity)
    {
        Outcome list = formatInto(capacity, Form::list, m_arguments->pointers());
        const Outcome pointers = formatInto(capacity, Form::pointers, m_arguments->pointers());
        require(list.result == pointers.result && list.size == pointers.size && list.text == pointers.text,
                "both forms agree");
        return list;
    }

private:
    enum class Form
    {
        list,
        pointers
    };

    Outcome formatInto(size_t capacity, Form form, void **pointers)
    {
        const long before = Platform::outstanding();
        Guarded<UCS2> out(capacity);
        unsigned long size = capacity;
        auto *const passThru = const_cast<int *>(&ownFailure);
        int result = 0;
        if (form == Form::list)
            result = m_arguments->withList([&](va_list list) {
                return KTvFormatStringWithPassThru(nullptr, m_tag, m_table.get(), passThru, &size, out.data(),
                                                   m_format.data(), list);
            });
        else
            result = KTvpFormatStringWithPassThru(nullptr, m_tag, m_table.get(), passThru, &size, out.data(),
                                                  m_format.data(), pointers);
        require(Platform::outstanding() == before, "a format call leaves nothing behind");
        if (result == 0)
        {
            require(size < capacity && out[size] == 0, "a text ends where its size says");
            require(m_table.hasEncoder() || out.isUntouched(size + 1), "only what an encoder wrote lies behind a text");
            return {0, size, std::u16string(out.data(), size)};
        }
        if (result == KT_ERR_BUFFER_TOO_SMALL)
            require(capacity == 0 || (size >= capacity && out.isTerminated()), "what does not fit is longer, and ends");
        else
            require(size == 0 || (size == capacity && out.isUntouched()), "a failure empties the text, or leaves it");
        return {result, size, u""};
    }

    std::string m_format;
    Table m_table;
    bool m_tag;
    int m_syntax;
    std::optional<Arguments> m_arguments;
};

void checkCapacities(Formatting &formatting)
{
    constexpr unsigned long largest = 20000;
    const Outcome measured = formatting.format(0);
    if (measured.result != KT_ERR_BUFFER_TOO_SMALL)
        return;
    const unsigned long need = measured.size;
    const bool isWritten = need <= largest;
    const Outcome whole = isWritten ? formatting.format(need + 1) : measured;
    require(!isWritten || whole.result != KT_ERR_BUFFER_TOO_SMALL, "the need reported suffices");
    require(whole.result != 0 || whole.size == need, "the need reported is what is written");
    for (const unsigned long capacity : {1UL, 2UL, 7UL, need / 2, need - 1, need})
    {
        if (capacity == 0 || capacity > need || capacity > largest)
            continue;
        const Outcome cut = formatting.format(capacity);
        if (cut.result == KT_ERR_BUFFER_TOO_SMALL)
            require(cut.size == need, "the need is the same at every capacity");
        else // a conversion that fails before the room ends
            require(cut.result != 0 && (!isWritten || cut.result == whole.result), "a failure is the same");
    }
    if (isWritten)
        require(formatting.format(need + 17).text == whole.text, "the text is the same with more room");
}

/** Replaces what stands in brackets by the positions 1, 2, … or the same backwards. */
std::string numbered(const std::string &format, bool isBackwards)
{
    std::string result;
    auto count = std::count(format.begin(), format.end(), '[');
    int position = 0;
    for (size_t i = 0; i < format.size(); ++i)
    {
        result += format[i];
        if (format[i] != '[')
            continue;
        ++position;
        result += std::to_string(isBackwards ? count + 1 - position : position);
        while (i + 1 < format.size() && format[i + 1] >= '0' && format[i + 1] <= '9')
            ++i;
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    const uint8_t *const end = std::find(data, data + size, uint8_t{0});
    std::string format(data, end);
    FuzzedDataProvider source(end, static_cast<size_t>(data + size - end));
    if (source.ConsumeBool())
        format = numbered(format, source.ConsumeBool());

    const long before = Platform::outstanding();
    {
        Formatting formatting(format, source);
        if (formatting.syntax() != 0)
            formatting.expectRefused();
        else
        {
            formatting.expectArgumentsCounted();
            checkCapacities(formatting);
        }
    }
    require(Platform::outstanding() == before, "a table leaves nothing behind");
    return 0;
}
