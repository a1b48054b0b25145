#include "support/arguments.h"
#include "support/page.h"

#include <gtest/gtest.h>
#include <regex>

namespace
{

/** Typed arguments as the page writes them. */
class TypedArguments
{
public:
    explicit TypedArguments(const std::string &list)
    {
        static const std::regex call(R"((KT_\w+)\(((?:'[^']*'|u?"[^"]*"|[^),])*)(?:, ([^)]*))?\))");
        for (std::sregex_iterator next(list.begin(), list.end(), call), end; next != end; ++next)
            m_typed.push_back(make((*next)[1], (*next)[2], (*next)[3]));
    }

    const KTArgument *data() const { return m_typed.data(); }
    size_t count() const { return m_typed.size(); }

private:
    KTArgument make(const std::string &name, const std::string &value, const std::string &more)
    {
        const size_t length = more.empty() || more == "NULL" ? 0 : std::stoul(more);
        if (name == "KT_INT")
            return KT_INT(static_cast<int32_t>(std::stol(value)));
        if (name == "KT_UINT")
            return KT_UINT(static_cast<uint32_t>(std::stoul(value)));
        if (name == "KT_INT64")
            return KT_INT64(std::stol(value));
        if (name == "KT_UINT64")
            return KT_UINT64(std::stoul(value));
        if (name == "KT_DOUBLE")
            return KT_DOUBLE(std::stod(value));
        if (name == "KT_CHAR")
            return KT_CHAR(value[0] == '\'' ? unquoted(value)[0] : '\0');
        if (name == "KT_UNIT")
            return KT_UNIT(static_cast<UCS2>(std::stoul(value, nullptr, 0)));
        if (name == "KT_POINTER")
            return KT_POINTER(1, nullptr);
        if (name == "KT_UTF8" && value == "NULL")
            return KT_UTF8(nullptr);
        m_texts.addText(unquoted(value));
        if (name.find("UCS2") != std::string::npos)
            m_texts.addText(toUCS2(unquoted(value.substr(1))));
        const void *const text = m_texts.pointers()[m_texts.count() - 1];
        if (name == "KT_UTF8" || name == "KT_UTF8N")
            return length == 0 ? KT_UTF8(static_cast<const char *>(text))
                               : KT_UTF8N(static_cast<const char *>(text), length);
        return length == 0 ? KT_UCS2(static_cast<const UCS2 *>(text))
                           : KT_UCS2N(static_cast<const UCS2 *>(text), length);
    }

    Arguments m_texts;
    std::vector<KTArgument> m_typed;
};

std::string formattedPrepared(const std::string &format, const TypedArguments &arguments)
{
    KTPreparedFormat *prepared = nullptr;
    EXPECT_EQ(KTPrepareFormat(format.c_str(), nullptr, &prepared), 0);
    char text[100];
    size_t size = sizeof text;
    const int result = KTFormatPreparedUTF8(prepared, 0, nullptr, &size, text, arguments.data(), arguments.count());
    EXPECT_TRUE(result != 0 || size == std::strlen(text));
    KTFreePrepared(prepared);
    return result == 0 ? text : KTResultName(result);
}

} // namespace

TEST(PreparedFormats, ExamplesOfThePageGiveTheOutputShown)
{
    ASSERT_EQ(KTInit(), 0);
    const std::vector<Row> rows = rowsUnder(readPage("docs/prepared-formats.md"), "| Format | Arguments | Output |");
    EXPECT_GT(rows.size(), 20U);
    for (const Row &row : rows)
        EXPECT_EQ(formattedPrepared(unquoted(row[0]), TypedArguments(row[1])), unquoted(row[2]))
            << row[0] << " of " << row[1];
    KTClean();
}

TEST(PreparedFormats, ProblemsAreExplainedAsShown)
{
    ASSERT_EQ(KTInit(), 0);
    const std::vector<Row> rows = rowsUnder(readPage("docs/prepared-formats.md"), "| Format | Part | Problem |");
    EXPECT_GT(rows.size(), 4U);
    for (const Row &row : rows)
    {
        const std::string format = unquoted(row[0]);
        KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
        EXPECT_EQ(KTExplainFormat(format.c_str(), nullptr, &problem), KT_ERR_FORMAT_SYNTAX);
        EXPECT_EQ(format.substr(problem.offset, problem.length), unquoted(row[1]));
        char sentence[200];
        size_t size = sizeof sentence;
        EXPECT_EQ(KTProblemText(&problem, &size, sentence), 0);
        EXPECT_EQ(sentence, row[2]);
    }
    KTClean();
}
