/**
 * The arguments of a format call in each of the forms that must agree: an array of pointers, to blocks of exactly the
 * size of their values, and a variable argument list, laid out in memory as the x86-64 calling convention has it once
 * all registers are used up. They are added one by one, or written as in the guide:
 *
 *     Arguments arguments("7, 7L, (short)7, 1.5, 1.5L, 'A', u'あ', \"text\", u\"text\", null");
 *
 * where the list gets the whole int of a "(short)98305" or a "(char)321", and a null pointer for a null.
 */
#ifndef KELTO_TESTS_SUPPORT_ARGUMENTS_H
#define KELTO_TESTS_SUPPORT_ARGUMENTS_H

#include "support/literals.h"

#include <cctype>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <deque>
#include <type_traits>
#include <vector>

/** A va_list whose arguments are all in memory, none in registers. */
struct ListInMemory
{
#ifdef __aarch64__
    const void *onStack = nullptr, *integerRegisters = nullptr, *otherRegisters = nullptr;
    int integerBytesLeft = 0, otherBytesLeft = 0;
#else
    unsigned integerBytesUsed = 48, bytesUsed = 176; // all of them
    const void *onStack = nullptr, *registers = nullptr;
#endif
};

class Arguments
{
public:
    Arguments() = default;
    explicit Arguments(const std::string &literals)
    {
        char quote = '\0';
        std::string literal;
        for (const char c : literals + ",")
        {
            if (c == '\'' || c == '"')
                quote = quote == '\0' ? c : c == quote ? '\0' : quote;
            if (c != ',' || quote != '\0')
                literal += c;
            else if (!literal.empty())
            {
                addLiteral(literal.substr(literal.find_first_not_of(' ')));
                literal.clear();
            }
        }
    }

    /** A value that both forms hold as it is: int32_t, int64_t, uint64_t, double, long double. */
    template <typename Value> void add(Value value)
    {
        addBlock(&value, sizeof value);
        addToList(value);
        if constexpr (std::is_same_v<Value, double>)
            m_typed.push_back(KT_DOUBLE(value));
        else if constexpr (std::is_same_v<Value, long double>)
            m_typed.push_back(KT_LONG_DOUBLE(static_cast<long double *>(lastBlock())));
        else if constexpr (std::is_pointer_v<Value>)
            m_typed.push_back(KT_POINTER(1, value));
        else if constexpr (sizeof value == sizeof(int64_t))
            m_typed.push_back(std::is_signed_v<Value> ? KT_INT64(static_cast<int64_t>(value))
                                                      : KT_UINT64(static_cast<uint64_t>(value)));
        else
            m_typed.push_back(KT_INT(value));
    }
    /** An int in the list, of which the block holds the part that is read: char, UCS2, int16_t. */
    template <typename Part> void addAs(int value)
    {
        const auto part = static_cast<Part>(value);
        addBlock(&part, sizeof part);
        addToList(value);
        m_typed.push_back(sizeof part == 1             ? KT_CHAR(static_cast<char>(part))
                          : std::is_same_v<Part, UCS2> ? KT_UNIT(static_cast<UCS2>(part))
                                                       : KT_INT(part));
    }
    /** A text of bytes or units; the list may hold a null pointer in the place of an empty one. */
    template <typename Text> void addText(const Text &text, bool isNullInList = false)
    {
        addBlock(text.c_str(), (text.size() + 1) * sizeof text[0]);
        addToList(isNullInList ? nullptr : lastBlock());
        if constexpr (sizeof text[0] == 1)
            m_typed.push_back(KT_UTF8(isNullInList ? nullptr : static_cast<char *>(lastBlock())));
        else
            m_typed.push_back(KT_UCS2(isNullInList ? nullptr : static_cast<UCS2 *>(lastBlock())));
    }

    /** Ended by a null pointer. */
    void **pointers() { return m_pointers.data(); }
    size_t count() const { return m_blocks.size(); }
    /** For the calls with typed arguments. */
    std::vector<KTArgument> typed() const { return m_typed; }

    /** Has the function called with the arguments as a list; its result. */
    template <typename Call> auto withList(Call call)
    {
        ListInMemory layout;
        layout.onStack = m_list.data();
        va_list list;
        static_assert(sizeof layout == sizeof list, "the calling convention of another machine");
        std::memcpy(&list, &layout, sizeof list);
        return call(list);
    }

private:
    void addLiteral(const std::string &literal)
    {
        const size_t cast = literal[0] == '(' ? literal.find(')') + 1 : 0;
        const bool isWide = literal[0] == 'u', isLong = literal.back() == 'L';
        const std::string quoted = literal.substr(isWide ? 1 : 0);
        if (literal == "null")
            addText(std::u16string(), true);
        else if (quoted[0] == '"')
            isWide ? addText(toUCS2(unquoted(quoted))) : addText(unquoted(quoted));
        else if (quoted[0] == '\'')
            isWide ? addAs<UCS2>(toUCS2(unquoted(quoted))[0]) : addAs<char>(unquoted(quoted)[0]);
        else if (cast != 0)
            literal[1] == 'c' ? addAs<char>(std::stoi(literal.substr(cast)))
                              : addAs<int16_t>(std::stoi(literal.substr(cast)));
        else if (literal.find('.') != std::string::npos || literal.find_first_of("in") <= 1)
            isLong ? add(std::stold(literal)) : add(std::stod(literal));
        else if (isLong)
            add(literal[0] == '-' ? std::stoll(literal) : static_cast<int64_t>(std::stoull(literal, nullptr, 0)));
        else
            add(static_cast<int32_t>(std::stoll(literal, nullptr, 0)));
    }

    void addBlock(const void *value, size_t size)
    {
        const auto *const bytes = static_cast<const char *>(value);
        m_pointers.back() = m_blocks.emplace_back(bytes, bytes + size).data();
        m_pointers.push_back(nullptr);
    }

    void *lastBlock() { return m_blocks.back().data(); }

    template <typename Value> void addToList(Value value)
    {
        constexpr size_t words = (sizeof value + 7) / 8;
        m_list.resize((m_list.size() + words - 1) / words * words + words); // aligned to its size
        std::memcpy(&m_list[m_list.size() - words], &value, sizeof value);
    }

    std::deque<std::vector<char>> m_blocks;
    std::vector<void *> m_pointers = {nullptr};
    std::vector<KTArgument> m_typed;
    std::vector<uint64_t> m_list; // from the heap, so aligned to 16 bytes
};

#endif
