/**
 * Arguments of the types that a format string asks for, with values from the fuzzer, for both forms of the format calls: an
 * array of pointers, and a variable argument list, which is laid out in memory as the x86-64 calling convention has it
 * once all registers are used up.
 */
#ifndef KELTO_FUZZ_ARGUMENTS_H
#define KELTO_FUZZ_ARGUMENTS_H

#include "kelto.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <deque>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

/** Mostly a small number; now and then one at the edge of the type. */
inline int64_t takeNumber(FuzzedDataProvider &source)
{
    constexpr int64_t edges[] = {0,         1,         -1,        INT16_MAX,  INT16_MIN,  INT32_MAX,
                                 INT32_MIN, INT64_MAX, INT64_MIN, UINT16_MAX, UINT32_MAX, 1000};
    return source.ConsumeBool() ? source.ConsumeIntegralInRange(-40, 40) : source.PickValueInArray(edges);
}

inline std::u16string takeUCS2(FuzzedDataProvider &source)
{
    std::u16string text;
    for (const char c : source.ConsumeRandomLengthString(80)) // beside ASCII, units around those of surrogate pairs
        text += static_cast<char16_t>(c >= 0 ? c : 0xDC00 + c * 16);
    return text.c_str();
}

class Arguments
{
public:
    /** For the parameters that checkSyntax() gives, which may be null. */
    Arguments(const KTParameter *parameters, FuzzedDataProvider &source) : m_source(source)
    {
        for (; parameters != nullptr && parameters->formatter != nullptr; ++parameters)
        {
            if (parameters->type == CONV_N || parameters->type == CONV_O)
                continue;
            for (const int field : {parameters->width, parameters->precision})
                if (field == -2)
                    add(static_cast<int>(takeNumber(m_source)));
            for (const int *type = parameters->formatter->argTypes; *type != 0; ++type)
                addOfType(*type, parameters->flags);
        }
        m_pointers.push_back(nullptr);
    }

    /** Ended by a null pointer. */
    void **pointers() { return m_pointers.data(); }
    size_t count() const { return m_pointers.size() - 1; }

    /** Has the function called with the arguments as a list. */
    template <typename Call> int withList(Call call)
    {
        constexpr unsigned allIntegerRegisters = 48, allRegisters = 176;
        m_list.resize(m_list.size() + m_list.size() % 2 + 2);
        va_list list;
        list[0].gp_offset = allIntegerRegisters;
        list[0].fp_offset = allRegisters;
        list[0].overflow_arg_area = m_list.data();
        list[0].reg_save_area = nullptr;
        return call(list);
    }

private:
    void addOfType(int type, int flags)
    {
        switch (type)
        {
        case 1:
            if ((flags & FLAG_l) != 0)
                addAs<UCS2>(static_cast<int>(takeNumber(m_source)));
            else
                addAs<char>(static_cast<int>(takeNumber(m_source)));
            break;
        case 2:
            addText(m_bytes.emplace_back(m_source.ConsumeRandomLengthString(80).c_str()));
            break;
        case 3:
            addText(m_units.emplace_back(takeUCS2(m_source)));
            break;
        case 4:
        case 5:
            if ((flags & FLAG_h) != 0)
                addAs<int16_t>(static_cast<int>(takeNumber(m_source)));
            else if ((flags & FLAG_BANG) != 0)
                add(takeNumber(m_source));
            else
                add(static_cast<int>(takeNumber(m_source)));
            break;
        case 6:
            if ((flags & FLAG_L) != 0)
                addLong(takeFloatingPoint());
            else
                add(static_cast<double>(takeFloatingPoint()));
            break;
        case 7:
            add(takeNumber(m_source));
            break;
        default: // takes no argument
            break;
        }
    }

    long double takeFloatingPoint()
    {
        constexpr long double edges[] = {
            0.0L, -0.0L, 0.5L, 1e15L, 1e300L, 1e-300L, 1e4000L, __builtin_infl(), __builtin_nanl("")};
        if (m_source.ConsumeBool())
            return m_source.PickValueInArray(edges);
        return static_cast<long double>(takeNumber(m_source)) / 1000;
    }

    template <typename Value> void pushCell(Value value)
    {
        long double &cell = m_cells.emplace_back();
        std::memcpy(&cell, &value, sizeof value);
        m_pointers.push_back(&cell);
    }

    template <typename Value> void pushList(Value value)
    {
        m_list.push_back(0);
        std::memcpy(&m_list.back(), &value, sizeof value);
    }

    template <typename Value> void add(Value value)
    {
        pushCell(value);
        pushList(value);
    }

    /** An int in the list, of which the cell holds a part. */
    template <typename Part> void addAs(int value)
    {
        pushCell(static_cast<Part>(value));
        pushList(value);
    }

    void addLong(long double value)
    {
        pushCell(value);
        m_list.resize(m_list.size() + m_list.size() % 2 + 2);
        std::memcpy(&m_list[m_list.size() - 2], &value, sizeof value);
    }

    /** A null pointer in the list stands for the empty text. */
    template <typename Text> void addText(Text &text)
    {
        m_pointers.push_back(text.data());
        pushList(text.empty() && m_source.ConsumeBool() ? nullptr : text.data());
    }

    FuzzedDataProvider &m_source;
    std::deque<long double> m_cells;
    std::deque<std::string> m_bytes;
    std::deque<std::u16string> m_units;
    std::vector<void *> m_pointers;
    std::vector<uint64_t> m_list; // from the heap, so aligned to 16 bytes
};

#endif
