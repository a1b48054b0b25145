#include "bilingual/plural_forms.h"

#include "bilingual/plural_expressions.h"
#include "kelto.h"
#include "library/selector.h"

#include <algorithm>
#include <fmt/core.h>
#include <iterator>
#include <map>
#include <utility>

namespace tool::bilingual
{
namespace
{

constexpr size_t mostExamples = 4;

/** Numbers among which every category of every language has its first ones. */
std::vector<uint64_t> sampleNumbers()
{
    std::vector<uint64_t> numbers;
    for (uint64_t number = 0; number < 1010; ++number)
        numbers.push_back(number);
    constexpr uint64_t larger[] = {2000,    5000,    21000,   40000,   100000, 100001,
                                   1000000, 1000001, 2000000, 3000000, 4100000};
    numbers.insert(numbers.end(), std::begin(larger), std::end(larger));
    return numbers;
}

/** A walk through an expression of C, evaluated for one number; bounds keep it from costing more than it may. */
class Evaluation
{
public:
    Evaluation(std::string_view text, uint64_t number) : m_text(text), m_number(number) {}

    std::optional<uint64_t> run()
    {
        const uint64_t value = conditional(); // which looks for operators, and so takes the blanks at the end too
        return m_isValid && m_at == m_text.size() ? std::optional(value) : std::nullopt;
    }

private:
    static constexpr unsigned deepest = 100;

    void skipBlanks()
    {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t'))
            ++m_at;
    }

    bool take(std::string_view token)
    {
        skipBlanks();
        if (m_text.substr(m_at, token.size()) != token)
            return false;
        m_at += token.size();
        return true;
    }

    uint64_t fail()
    {
        m_isValid = false;
        m_at = m_text.size();
        return 0;
    }

    uint64_t conditional()
    {
        if (++m_depth > deepest)
            return fail();
        const uint64_t condition = binary(0);
        uint64_t value = condition;
        if (take("?"))
        {
            const uint64_t yes = conditional();
            if (!take(":"))
                return fail();
            const uint64_t no = conditional();
            value = condition != 0 ? yes : no;
        }
        --m_depth;
        return value;
    }

    struct Operator
    {
        std::string_view token;
        size_t level;
    };

    /** From the loosest operator on; of two that begin alike the longer one comes first. */
    static constexpr Operator operators[] = {{"||", 0}, {"&&", 1}, {"==", 2}, {"!=", 2}, {"<=", 3}, {">=", 3}, {"<", 3},
                                             {">", 3},  {"+", 4},  {"-", 4},  {"*", 5},  {"/", 5},  {"%", 5}};
    static constexpr size_t tightest = 5;

    const Operator *takeOperator(size_t level)
    {
        for (const Operator &row : operators)
            if (row.level == level && take(row.token))
                return &row;
        return nullptr;
    }

    uint64_t binary(size_t level)
    {
        if (level > tightest)
            return unary();
        uint64_t value = binary(level + 1);
        while (const Operator *const row = m_isValid ? takeOperator(level) : nullptr)
            value = apply(row->token, value, binary(level + 1));
        return value;
    }

    uint64_t apply(std::string_view token, uint64_t left, uint64_t right)
    {
        switch (token[0])
        {
        case '|':
            return left != 0 || right != 0 ? 1 : 0;
        case '&':
            return left != 0 && right != 0 ? 1 : 0;
        case '=':
            return left == right ? 1 : 0;
        case '!':
            return left != right ? 1 : 0;
        case '<':
            return (token.size() == 2 ? left <= right : left < right) ? 1 : 0;
        case '>':
            return (token.size() == 2 ? left >= right : left > right) ? 1 : 0;
        case '+':
            return left + right;
        case '-':
            return left - right;
        case '*':
            return left * right;
        default:
            return right == 0 ? fail() : token[0] == '/' ? left / right : left % right;
        }
    }

    uint64_t unary()
    {
        bool isNegated = false;
        bool isTruth = false;
        while (take("!"))
        {
            isTruth = true;
            isNegated = !isNegated;
        }
        const uint64_t value = primary();
        return isTruth ? ((value != 0) != isNegated ? 1 : 0) : value;
    }

    uint64_t primary()
    {
        if (take("("))
        {
            const uint64_t value = conditional();
            return take(")") ? value : fail();
        }
        if (take("n"))
            return m_number;
        skipBlanks();
        const size_t begin = m_at;
        uint64_t value = 0;
        for (; m_at < m_text.size() && m_text[m_at] >= '0' && m_text[m_at] <= '9'; ++m_at)
            value = value * 10 + static_cast<uint64_t>(m_text[m_at] - '0');
        return m_at > begin ? value : fail();
    }

    std::string_view m_text;
    uint64_t m_number;
    size_t m_at = 0;
    unsigned m_depth = 0;
    bool m_isValid = true;
};

/** The value behind "NAME=" in a header, up to the next ';'. */
std::optional<std::string> fieldOf(std::string_view header, std::string_view name)
{
    size_t at = header.find(name);
    if (at == std::string_view::npos)
        return std::nullopt;
    at = header.find_first_not_of(" \t", at + name.size());
    if (at == std::string_view::npos || header[at] != '=')
        return std::nullopt;
    const size_t end = std::min(header.find(';', at), header.size());
    return std::string(header.substr(at + 1, end - at - 1));
}

/**
 * The value of a key. A file asks for that of one language again and again, and to make it takes the rules of the
 * language for a thousand numbers.
 */
template <typename Key, typename Value, typename Make>
const Value &remembered(std::map<Key, Value> &known, const Key &key, Make make)
{
    constexpr size_t most = 16; // a file may name any language
    const auto found = known.find(key);
    if (found != known.end())
        return found->second;
    if (known.size() == most)
        known.clear();
    return known.emplace(key, make(key)).first->second;
}

using Kind = std::pair<std::string, bool>; // a language, and whether it is about ordinals

std::vector<Category> makeCategories(const Kind &kind)
{
    static const std::vector<uint64_t> samples = sampleNumbers();
    const auto &[language, isOrdinal] = kind;
    std::vector<Category> categories;
    for (int variant = KT_VARIANT_ZERO; variant <= KT_VARIANT_OTHER; ++variant)
        categories.push_back({variant, {}});
    const char *const locale = language.empty() ? "und" : language.c_str();
    for (const uint64_t number : samples)
    {
        const int variant = KTPluralCategory(locale, isOrdinal, KT_UINT64(number), 0);
        if (variant >= 0)
            categories[static_cast<size_t>(variant)].examples.push_back(number);
    }
    categories.erase(std::remove_if(categories.begin(), categories.end(),
                                    [](const Category &category) { return category.examples.empty(); }),
                     categories.end());
    return categories;
}

std::string makeHeader(const std::string &language)
{
    const std::vector<Category> categories = categoriesOf(language, false);
    std::string names;
    for (const Category &category : categories)
        names += (names.empty() ? "" : " ") + std::string(variantLabels[category.variant]);
    for (const PluralExpression &row : pluralExpressions)
    {
        if (names != row.categories)
            continue;
        std::string header = fmt::format("nplurals={}; plural={};", categories.size(), row.expression);
        const std::optional<PluralHeader> read = PluralHeader::read(header);
        bool fits = read.has_value();
        for (size_t form = 0; fits && form < categories.size(); ++form)
            for (const uint64_t number : categories[form].examples)
                fits = fits && read->formOf(number) == form;
        if (fits)
            return header;
    }
    return "nplurals=1; plural=0;";
}

} // namespace

std::vector<Category> categoriesOf(const std::string &language, bool isOrdinal)
{
    thread_local std::map<Kind, std::vector<Category>> known;
    return remembered(known, Kind(language, isOrdinal), makeCategories);
}

std::string examplesText(const Category &category)
{
    std::string text;
    for (size_t i = 0; i < std::min(mostExamples, category.examples.size()); ++i)
        text += (i > 0 ? ", " : "") + std::to_string(category.examples[i]);
    return text;
}

std::string pluralHeaderOf(const std::string &language)
{
    thread_local std::map<std::string, std::string> known;
    return remembered(known, language, makeHeader);
}

std::optional<PluralHeader> PluralHeader::read(std::string_view header)
{
    constexpr size_t longest = 4096;
    constexpr unsigned mostForms = 64;
    const std::optional<std::string> count = fieldOf(header, "nplurals");
    if (!count || header.size() > longest)
        return std::nullopt;
    const std::optional<uint64_t> forms = Evaluation(*count, 0).run();
    const size_t begin = header.find(';'); // behind "nplurals"
    if (!forms || *forms == 0 || *forms > mostForms || begin == std::string_view::npos)
        return std::nullopt;
    const std::optional<std::string> plural = fieldOf(header.substr(begin), "plural");
    if (!plural || !Evaluation(*plural, 1).run())
        return std::nullopt;
    return PluralHeader(static_cast<unsigned>(*forms), *plural);
}

std::optional<unsigned> PluralHeader::formOf(uint64_t number) const
{
    const std::optional<uint64_t> form = Evaluation(m_expression, number).run();
    return form && *form < m_forms ? std::optional(static_cast<unsigned>(*form)) : std::nullopt;
}

} // namespace tool::bilingual
