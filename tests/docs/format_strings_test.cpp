#include "docs/page.h"
#include "kelto.h"

#include <cctype>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace
{

std::u16string toUCS2(const std::string &text)
{
    std::vector<UCS2> units(text.size() + 1);
    size_t size = units.size();
    EXPECT_EQ(KTUTF8ToUCS2(text.c_str(), &size, units.data()), 0);
    return std::u16string(units.data(), size);
}

std::string toUTF8(const UCS2 *text)
{
    std::vector<char> bytes(3 * KTUCS2strlen(text) + 1);
    size_t size = bytes.size();
    EXPECT_EQ(KTUCS2ToUTF8(text, &size, bytes.data()), 0);
    return std::string(bytes.data(), size);
}

/** Arguments as the page writes them, in literals of C, each in a block of its exact size. */
class Arguments
{
public:
    explicit Arguments(const std::string &list)
    {
        char quote = '\0';
        std::string literal;
        for (const char c : list + ",")
        {
            if (c == quote)
                quote = '\0';
            else if (quote == '\0' && (c == '"' || c == '\''))
                quote = c;
            if (c != ',' || quote != '\0')
                literal += c;
            else if (!literal.empty())
            {
                add(literal.substr(literal.find_first_not_of(' ')));
                literal.clear();
            }
        }
        for (std::vector<char> &block : m_blocks)
            m_slots.push_back(block.data());
        m_slots.push_back(nullptr);
    }

    void **slots() { return m_slots.data(); }

private:
    void add(const std::string &literal)
    {
        const bool isWide = literal[0] == 'u';
        const char quote = literal[isWide ? 1 : 0];
        if (quote == '"' && isWide)
            addText(toUCS2(unquoted(literal.substr(1))));
        else if (quote == '"')
            addText(unquoted(literal));
        else if (quote == '\'' && isWide)
            addValue(toUCS2(literal.substr(2, literal.size() - 3))[0]);
        else if (quote == '\'')
            addValue(literal[1]);
        else
            addNumber(literal);
    }

    void addNumber(const std::string &literal)
    {
        const std::string asShort = "(short)";
        const bool isLong = literal.back() == 'L';
        if (literal.compare(0, asShort.size(), asShort) == 0)
            addValue(static_cast<int16_t>(std::stoi(literal.substr(asShort.size()), nullptr, 0)));
        else if (literal.find('.') != std::string::npos || std::isalpha(static_cast<unsigned char>(literal[0])) != 0)
            isLong ? addValue(std::stold(literal)) : addValue(std::stod(literal));
        else if (isLong)
            addValue(literal[0] == '-' ? std::stoll(literal) : static_cast<int64_t>(std::stoull(literal, nullptr, 0)));
        else
            addValue(static_cast<int32_t>(std::stoll(literal, nullptr, 0)));
    }

    template <typename Text> void addText(const Text &text)
    {
        const auto *const bytes = reinterpret_cast<const char *>(text.c_str());
        m_blocks.emplace_back(bytes, bytes + (text.size() + 1) * sizeof text[0]);
    }

    template <typename Value> void addValue(Value value)
    {
        const auto *const bytes = reinterpret_cast<const char *>(&value);
        m_blocks.emplace_back(bytes, bytes + sizeof value);
    }

    std::vector<std::vector<char>> m_blocks;
    std::vector<void *> m_slots;
};

/** The text, or the name of the result; measured first, then written into a block of exactly the size measured. */
std::string formatted(std::string format, const std::string &arguments, bool tag)
{
    Arguments values(arguments);
    unsigned long size = 0;
    int result = KTvpFormatString(nullptr, tag, &size, nullptr, format.data(), values.slots());
    if (result != KT_ERR_BUFFER_TOO_SMALL)
        return KTResultName(result);
    std::vector<UCS2> out(++size);
    result = KTvpFormatString(nullptr, tag, &size, out.data(), format.data(), values.slots());
    if (result != 0)
        return KTResultName(result);
    EXPECT_EQ(size, out.size() - 1);
    return toUTF8(out.data());
}

void addNames(const std::string &format, std::set<std::string> &names)
{
    KTParameter *parameters = nullptr;
    if (checkSyntax(toUCS2(format).c_str(), nullptr, &parameters) == 0 && parameters != nullptr)
        for (const KTParameter *parameter = parameters; parameter->formatter != nullptr; ++parameter)
            if (parameter->formatter->name != nullptr)
                names.insert(parameter->formatter->name);
    ZEL_free(parameters);
}

} // namespace

TEST(FormatStrings, EveryExampleOfThePageGivesTheOutputShown)
{
    ASSERT_EQ(KTInit(), 0);
    const std::string page = readPage("docs/format-strings.md");
    std::set<std::string> names;
    size_t count = 0;
    for (const bool tag : {false, true})
        for (const Row &row :
             rowsUnder(page, tag ? "| Format | Arguments | Output with tags |" : "| Format | Arguments | Output |"))
        {
            ASSERT_EQ(row.size(), 3U) << row[0];
            SCOPED_TRACE(row[0] + " of " + row[1]);
            EXPECT_EQ(formatted(unquoted(row[0]), row[1], tag), unquoted(row[2]));
            addNames(unquoted(row[0]), names);
            ++count;
        }
    EXPECT_GT(count, 100U) << "tables are not found";
    for (const KTFormatter *record = builtInFormList; record->name != nullptr; ++record)
        EXPECT_EQ(names.count(record->name), 1U) << "no example of " << record->name;
    KTClean();
}
