// A format string, which ends at the first zero byte, then what decides about tables and arguments. The string is used
// with arguments of the types that it asks for, in both forms and prepared, with no table, the built-in one, copies and
// own ones, with and without encoder, and into every class of capacity. One formatter is also called by itself, with
// any width, precision and flags.

#include "support/arguments.h"
#include "support/fake_zel.h"
#include "support/ucs2.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <map>

namespace
{

constexpr unsigned long largest = 20000; // a longer text is measured, and not written

// ---- Own conversions and encoders ----

constexpr int ownFailure = -4242;

/** What those that keep no contract claim, whatever their room is. */
struct Claim
{
    int result;
    unsigned long size;
} claim;

int writeUnits(const std::u16string &text, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    *size = text.size();
    if (text.size() + 1 > room)
        return KT_ERR_BUFFER_TOO_SMALL;
    text.copy(out, text.size());
    return 0;
}

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
    require(passThru == &claim, "the pass-through pointer arrives");
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

int formatWild(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = claim.size;
    return claim.result;
}

const int noTypes[] = {9, 0}, pairTypes[] = {4, 2, 0}, skipTypes[] = {8, 7, 100, 0};

KTFormatter ownList[] = {{"fail", nullptr, 1, signedIntList, formatFail}, {"none", nullptr, 0, noTypes, formatNone},
                         {"pair", nullptr, 2, pairTypes, formatPair},     {"skip", nullptr, 1, skipTypes, formatSkip},
                         {"wild", nullptr, 0, noTypes, formatWild},       {nullptr, nullptr, 0, nullptr, nullptr}};

/** Writes each unit twice, as many as fit, and tells the length of the whole; texts that begin with an 'F' fail. */
int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    std::u16string text;
    if (dataType == KT_ENCODE_UCS2)
        text = static_cast<const UCS2 *>(value);
    else
        text = dataType == KT_ENCODE_UNIT ? *static_cast<const UCS2 *>(value)
                                          : static_cast<UCS2>(*static_cast<const char *>(value));
    std::u16string doubled;
    for (const UCS2 unit : text)
        doubled += {unit, unit};
    const bool fails = dataType == KT_ENCODE_UCS2 && !text.empty() && text[0] == u'F';
    if (!fails)
        doubled.copy(out, *size);
    *size = fails ? 0 : doubled.size();
    return fails ? ownFailure : 0;
}

int encodeWild(const void *, int, unsigned long *size, UCS2 *)
{
    *size = claim.size;
    return claim.result;
}

/** The table of a call, made anew for each input. */
class Table
{
public:
    explicit Table(FuzzedDataProvider &source)
    {
        m_encoder = source.PickValueInArray<KTEncoder>({nullptr, nullptr, encode, encodeWild});
        require(KTRegisterEncoder(m_encoder) == 0, "an encoder is registered");
        m_own.formList = ownList;
        m_empty.nextTable = &m_own;
        m_kind = source.ConsumeIntegralInRange(0, 6);
        if (m_kind == 2 || m_kind == 3 || m_kind == 5)
            require(KTGetBuiltInFormTable(m_kind == 2 ? 1 : 3, &m_copy) == 0, "a copy is made");
        m_own.nextTable = m_copy != nullptr ? m_copy : &builtInFormTable;
        m_own.indexed = m_kind == 5;
        for (int i = 0; ownList[i].name != nullptr; ++i)
            m_own.letterIndex[*ownList[i].name - 'a'] = i + 1;
    }
    ~Table() { require(KTFreeFormTable(m_copy) == 0, "a copy is freed"); }
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    formTable *get()
    {
        formTable *const tables[] = {nullptr, &builtInFormTable, m_copy, m_copy, &m_own, &m_own, &m_empty};
        return tables[m_kind];
    }

    bool hasEncoder() const { return m_encoder != nullptr; }
    bool isWild() const { return m_encoder == encodeWild; }

private:
    KTEncoder m_encoder;
    formTable m_own = {}, m_empty = {};
    formTable *m_copy = nullptr;
    int m_kind;
};

// ---- Arguments ----

/** Mostly a small number; now and then one at the edge of the type. */
int64_t takeNumber(FuzzedDataProvider &source)
{
    constexpr int64_t edges[] = {0,         1,         -1,        INT16_MAX,  INT16_MIN,  INT32_MAX,
                                 INT32_MIN, INT64_MAX, INT64_MIN, UINT16_MAX, UINT32_MAX, 1000};
    return source.ConsumeBool() ? source.ConsumeIntegralInRange(-40, 40) : source.PickValueInArray(edges);
}

int takeInt(FuzzedDataProvider &source)
{
    return static_cast<int>(takeNumber(source));
}

long double takeFloatingPoint(FuzzedDataProvider &source)
{
    constexpr long double edges[] = {
        0.0L, -0.0L, 0.5L, 1e15L, 1e300L, 1e-300L, 1e4000L, 1e-4000L, __builtin_infl(), __builtin_nanl("")};
    if (source.ConsumeBool())
        return source.PickValueInArray(edges);
    return static_cast<long double>(takeNumber(source)) / source.ConsumeIntegralInRange(1, 1000);
}

std::string takeText(FuzzedDataProvider &source)
{
    return source.ConsumeRandomLengthString(80).c_str();
}

/** Beside ASCII, units around those of surrogate pairs. */
std::u16string takeUCS2(FuzzedDataProvider &source)
{
    std::u16string text;
    for (const char c : takeText(source))
        text += static_cast<char16_t>(c >= 0 ? c : 0xDC00 + c * 16);
    return text;
}

void addArgument(Arguments &arguments, int type, int flags, FuzzedDataProvider &source)
{
    switch (type)
    {
    case KT_ARG_CHARACTER:
        (flags & FLAG_l) != 0 ? arguments.addAs<UCS2>(takeInt(source)) : arguments.addAs<char>(takeInt(source));
        break;
    case KT_ARG_UTF8:
        arguments.addText(takeText(source));
        break;
    case KT_ARG_UCS2:
        arguments.addText(takeUCS2(source));
        break;
    case KT_ARG_SIGNED:
    case KT_ARG_UNSIGNED:
        if ((flags & FLAG_h) != 0)
            type == KT_ARG_SIGNED ? arguments.addAs<int16_t>(takeInt(source))
                                  : arguments.addAs<uint16_t>(takeInt(source));
        else if ((flags & FLAG_BANG) != 0)
            arguments.add(takeNumber(source));
        else
            arguments.add(takeInt(source));
        break;
    case KT_ARG_DOUBLE:
        if ((flags & FLAG_L) != 0)
            arguments.add(takeFloatingPoint(source));
        else
            arguments.add(static_cast<double>(takeFloatingPoint(source)));
        break;
    case KT_ARG_POINTER:
        arguments.add(reinterpret_cast<const void *>(takeNumber(source)));
        break;
    default: // takes no argument
        break;
    }
}

/** What a format asks for. */
void addArguments(Arguments &arguments, const KTParameter *parameter, FuzzedDataProvider &source)
{
    for (; parameter != nullptr && parameter->formatter != nullptr; ++parameter)
    {
        if (parameter->type == CONV_N || parameter->type == CONV_O)
            continue;
        for (const int field : {parameter->width, parameter->precision})
            if (field == KT_FROM_ARGUMENTS)
                arguments.add(takeInt(source));
        for (const int *type = parameter->formatter->argTypes; *type != 0; ++type)
            addArgument(arguments, *type, parameter->flags, source);
    }
}

// ---- Calls ----

struct Outcome
{
    int result;
    unsigned long size;
    std::u16string text; // after success

    bool operator==(const Outcome &other) const
    {
        return result == other.result && size == other.size && text == other.text;
    }
};

/** One format string with its table and its arguments. */
class Formatting
{
public:
    Formatting(std::string format, FuzzedDataProvider &source)
        : m_format(std::move(format)), m_table(source), m_tag(source.ConsumeBool())
    {
        KTParameter *parameters = nullptr;
        m_syntax = checkSyntax(toUCS2(m_format).c_str(), m_table.get(), &parameters);
        require(m_syntax == 0 || m_syntax == KT_ERR_FORMAT_SYNTAX, "a format is accepted or refused");
        m_isWild = m_table.isWild() || m_format.find("wild") != std::string::npos;
        if (m_syntax == 0)
            addArguments(m_arguments, parameters, source);
        ZEL_free(parameters);
        require(KTPrepareFormat(m_format.c_str(), m_table.get(), &m_prepared) == m_syntax, "preparing is checking");
        require((m_prepared != nullptr) == (m_syntax == 0), "what is refused is not prepared");
    }
    ~Formatting() { KTFreePrepared(m_prepared); }
    Formatting(const Formatting &) = delete;
    Formatting &operator=(const Formatting &) = delete;

    void check(FuzzedDataProvider &source)
    {
        checkExplanation();
        checkWalk();
        if (m_syntax != 0)
        {
            require(byList(20).result == m_syntax, "a format call refuses what checkSyntax refuses");
            return;
        }
        const KTSlot *slots = nullptr;
        require(KTPreparedSlots(m_prepared, &slots) == m_arguments.count(), "each argument has its slot");
        checkCapacities();
        if (m_arguments.count() > 0)
            require(byPointers(20, m_arguments.pointers() + 1).result == KT_ERR_INVALID_PARAMETER,
                    "a missing argument is noticed");
        checkUTF8(foreignArguments(source));
    }

private:
    /** The walk stays in the format and comes to its end; of a right one it finds the slots, by positions. */
    void checkWalk()
    {
        std::map<unsigned, std::vector<KTSlot>> byPosition;
        std::vector<KTSlot> slots(3 * m_format.size() + 3);
        KTConversion found{};
        found.structSize = sizeof found;
        found.slotList = slots.data();
        found.slotRoom = slots.size();
        for (size_t behind = 0; KTNextConversion(m_format.c_str(), m_table.get(), &found);)
        {
            require(found.offset >= behind && m_format[found.offset] == '%' && found.length > 0, "a walk goes on");
            behind = found.offset + found.length;
            require(behind <= m_format.size(), "a walk stays in the format");
            require(found.rule == KT_RULE_NONE || m_syntax != 0, "a right format has no conversion that is not");
            if (found.rule == KT_RULE_NONE)
                byPosition[found.position].assign(slots.begin(),
                                                  slots.begin() + static_cast<ptrdiff_t>(found.slotCount));
        }
        const KTSlot *slot = nullptr;
        size_t left = KTPreparedSlots(m_prepared, &slot);
        for (const auto &[position, own] : byPosition)
            for (size_t i = 0; m_syntax == 0 && i < own.size(); ++i, ++slot, --left)
                require(left > 0 && std::memcmp(&own[i], slot, sizeof *slot) == 0, "both tell the same slots");
        require(m_syntax != 0 || left == 0, "both tell all of them");
    }

    void checkExplanation()
    {
        KTProblem problem = {sizeof problem, -1, 0, 0, 0, 0, nullptr, nullptr, 0};
        require(KTExplainFormat(m_format.c_str(), m_table.get(), &problem) == m_syntax, "explaining is checking");
        require((problem.rule == KT_RULE_NONE) == (m_syntax == 0), "what is refused has a reason");
        require(problem.offset <= m_format.size() && problem.length <= m_format.size() - problem.offset,
                "a problem lies in the format");
        require(KTCompareFormats(m_format.c_str(), m_format.c_str(), m_table.get(), nullptr) == m_syntax,
                "a format that is accepted fits itself");
        size_t need = 0;
        const int measured = KTProblemText(&problem, &need, nullptr);
        Guarded<char> text(need + 1);
        size_t size = need + 1;
        require(measured == KT_ERR_BUFFER_TOO_SMALL && KTProblemText(&problem, &size, text.data()) == 0,
                "it has a text");
        require(size == need && text.text().size() == need, "of the length that was told");
    }

    void checkCapacities()
    {
        const Outcome measured = format(0);
        const unsigned long need = measured.size;
        if (measured.result != KT_ERR_BUFFER_TOO_SMALL)
            return;
        const bool isWritten = need <= largest;
        const Outcome whole = isWritten ? format(need + 1) : measured;
        for (const unsigned long capacity : {1UL, 2UL, 7UL, need / 2, need - 1, need})
        {
            if (capacity == 0 || capacity > need || capacity > largest)
                continue;
            const Outcome cut = format(capacity);
            if (m_isWild)
                continue;
            if (cut.result == KT_ERR_BUFFER_TOO_SMALL)
                require(cut.size == need, "the need is the same at every capacity");
            else // a conversion that fails before the room ends
                require(cut.result != 0 && (!isWritten || cut.result == whole.result), "a failure is the same");
        }
        checkUTF8(m_arguments.typed());
        if (!isWritten || m_isWild)
            return;
        require(whole.result != KT_ERR_BUFFER_TOO_SMALL, "the need reported suffices");
        require(whole.result != 0 || whole.size == need, "the need reported is what is written");
        require(format(need + 17).text == whole.text, "the text is the same with more room");
    }

    /** The arguments with one of them, perhaps, replaced by any other, and perhaps another number of them. */
    std::vector<KTArgument> foreignArguments(FuzzedDataProvider &source)
    {
        static const char text[] = "te\xC3\xA9xt";
        static const UCS2 units[] = u"a\xD83D\xDE00";
        static const long double real = 1.5L;
        const KTArgument others[] = {KT_INT(-1),
                                     KT_UINT(UINT32_MAX),
                                     KT_INT64(INT64_MIN),
                                     KT_UINT64(UINT64_MAX),
                                     KT_CHAR('\xE9'),
                                     KT_UNIT(0xD83D),
                                     KT_DOUBLE(1e300),
                                     KT_LONG_DOUBLE(&real),
                                     KT_LONG_DOUBLE(nullptr),
                                     KT_UTF8(nullptr),
                                     KT_UTF8N(text, 3),
                                     KT_UTF8(text),
                                     KT_UCS2(nullptr),
                                     KT_UCS2N(units, 2),
                                     KT_UCS2(units),
                                     KT_POINTER(2, text),
                                     {0, 0, {0}},
                                     {99, 1, {0}},
                                     {KT_ARGUMENT_INT, 1, {0}},
                                     {KT_ARGUMENT_INT, 0, {INT64_MAX}},
                                     {KT_ARGUMENT_CHAR, 0, {256}}};
        std::vector<KTArgument> arguments = m_arguments.typed();
        for (KTArgument &argument : arguments)
            if (source.ConsumeIntegralInRange(0, 3) == 0)
                argument = source.PickValueInArray(others);
        if (source.ConsumeIntegralInRange(0, 7) == 0)
            arguments.resize(source.ConsumeIntegralInRange<size_t>(0, arguments.size() + 1));
        return arguments;
    }

    /** Whatever the arguments are: the UTF-8 text is what becomes of the UCS-2 text, in any room. */
    void checkUTF8(const std::vector<KTArgument> &arguments)
    {
        const Outcome measured = byPrepared(0, arguments);
        const bool isWritten = measured.result == KT_ERR_BUFFER_TOO_SMALL && measured.size <= largest;
        const Outcome whole = isWritten ? byPrepared(measured.size + 1, arguments) : measured;
        const std::string text = toUTF8(whole.text);
        for (const size_t capacity : {size_t{0}, size_t{1}, size_t{9}, text.size() / 2, text.size(), text.size() + 1})
        {
            const Outstanding before = FakeZel::outstanding();
            Guarded<char> out(capacity);
            size_t size = capacity;
            const int result = KTFormatPreparedUTF8(m_prepared, m_tag ? KT_TAG : 0, &claim, &size, out.data(),
                                                    arguments.data(), arguments.size());
            require(FakeZel::outstanding() == before, "a prepared call leaves nothing behind");
            const bool isRefused = result == KT_ERR_INVALID_PARAMETER && size == capacity && out.untouched();
            require(isRefused || capacity == 0 || out.isTerminated(), "a text ends in its room");
            if (m_isWild || (measured.result == KT_ERR_BUFFER_TOO_SMALL && !isWritten))
                continue;
            if (whole.result != 0)
                require(result == whole.result || (isWritten && result == KT_ERR_BUFFER_TOO_SMALL),
                        "a failure is the same");
            else
                require(result == (capacity > text.size() ? 0 : KT_ERR_BUFFER_TOO_SMALL) && size == text.size(),
                        "the need is that of the other text");
            require(result != 0 || out.text() == text, "the text is the other text");
        }
    }

    Outcome format(size_t capacity)
    {
        const Outcome list = byList(capacity);
        require(byPointers(capacity, m_arguments.pointers()) == list, "both forms agree");
        require(m_isWild || byPrepared(capacity, m_arguments.typed()) == list, "a prepared call agrees with them");
        return list;
    }

    Outcome byList(size_t capacity)
    {
        return call(capacity, [&](unsigned long *size, UCS2 *out) {
            return m_arguments.withList([&](va_list list) {
                return KTvFormatStringWithPassThru(nullptr, m_tag, m_table.get(), &claim, size, out, m_format.data(),
                                                   list);
            });
        });
    }

    Outcome byPointers(size_t capacity, void **pointers)
    {
        return call(capacity, [&](unsigned long *size, UCS2 *out) {
            return KTvpFormatStringWithPassThru(nullptr, m_tag, m_table.get(), &claim, size, out, m_format.data(),
                                                pointers);
        });
    }

    Outcome byPrepared(size_t capacity, const std::vector<KTArgument> &arguments)
    {
        return call(capacity, [&](unsigned long *size, UCS2 *out) {
            return KTFormatPrepared(m_prepared, m_tag ? KT_TAG : 0, &claim, size, out, arguments.data(),
                                    arguments.size());
        });
    }

    template <typename Format> Outcome call(size_t capacity, Format format)
    {
        const Outstanding before = FakeZel::outstanding();
        Ucs2Buffer out(capacity);
        unsigned long size = capacity;
        const int result = format(&size, out.data());
        require(FakeZel::outstanding() == before, "a format call leaves nothing behind");
        if (result == 0)
        {
            require(size < capacity && out[size] == 0, "a text ends where its size says");
            require(m_table.hasEncoder() || out.untouched(size + 1), "only what an encoder wrote lies behind a text");
            return {0, size, asString(out.data(), size)};
        }
        if (result == KT_ERR_BUFFER_TOO_SMALL)
            require(capacity == 0 || ((size >= capacity || m_isWild) && out.isTerminated()),
                    "what does not fit is longer, and ends");
        else
            require(size == 0 || (size == capacity && out.untouched()), "a failure empties the text, or leaves it");
        return {result, size, u""};
    }

    std::string m_format;
    Table m_table;
    bool m_tag;
    int m_syntax;
    bool m_isWild;
    Arguments m_arguments;
    KTPreparedFormat *m_prepared = nullptr;
};

/** Replaces what stands in brackets by the positions 1, 2, … or the same backwards. */
std::string numbered(const std::string &format, bool isBackwards)
{
    std::string result;
    const auto count = std::count(format.begin(), format.end(), '[');
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

// ---- Formatters ----

/** One formatter by itself, measured and written. */
void checkFormatter(const KTFormatter &formatter, int width, int precision, int flags, Arguments &arguments)
{
    const auto into = [&](size_t room) -> Outcome {
        const Outstanding before = FakeZel::outstanding();
        Ucs2Buffer out(room);
        unsigned long size = room;
        const int result = formatter.format(formatter.name, width, precision, flags, nullptr, nullptr,
                                            arguments.pointers(), &size, out.data());
        require(FakeZel::outstanding() == before, "a formatter leaves nothing behind");
        const bool isEmpty = room == 0 && size == 0; // an empty address asks for no room
        require(result != 0 || isEmpty || (size < room && out.untouched(size + 1)),
                "a text fits, and no more is written");
        require(result != KT_ERR_BUFFER_TOO_SMALL || size >= room, "what does not fit is longer");
        return {result, size, result == 0 ? asString(out.data(), size) : u""};
    };
    const Outcome measured = into(0);
    if (measured.result != KT_ERR_BUFFER_TOO_SMALL || measured.size > largest)
        return;
    const unsigned long need = measured.size;
    for (const unsigned long room : {1UL, need / 2, need})
        require(room > need || into(room) == measured, "the need is the same in every room");
    const Outcome whole = into(need + 1);
    require(whole.result == 0 && whole.size == need, "the need reported is what is written");
    require(into(need + 17).text == whole.text, "the text is the same with more room");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const int started = KTInit();
    FakeZel::refuseAbove(size_t{1} << 20); // what a wild conversion asks for beyond that
    const uint8_t *const end = std::find(data, data + size, uint8_t{0});
    std::string format(data, end);
    FuzzedDataProvider source(end, static_cast<size_t>(data + size - end));
    if (source.ConsumeBool())
        format = numbered(format, source.ConsumeBool());
    claim = {source.PickValueInArray<int>({0, KT_ERR_BUFFER_TOO_SMALL, ownFailure, 7}),
             source.PickValueInArray<unsigned long>({0, 1, 19, 1000, UINT32_MAX, UINT64_MAX})};

    const Outstanding before = FakeZel::outstanding();
    Formatting(format, source).check(source);

    const KTFormatter &formatter =
        builtInFormList[source.ConsumeIntegralInRange<size_t>(0, std::size(builtInFormList) - 1)];
    const int width = takeInt(source), precision = takeInt(source), flags = source.ConsumeIntegral<uint16_t>();
    if (formatter.argTypes != nullptr)
    {
        Arguments arguments;
        addArgument(arguments, formatter.argTypes[0], flags, source);
        checkFormatter(formatter, width, precision, flags, arguments);
    }
    require(FakeZel::outstanding() == before, "nothing is left behind");
    return 0;
}
