/**
 * Which forms a language needs, for which numbers, and how PO files say so. The rules are the library's; the header
 * "Plural-Forms" of a file is evaluated with bounds, since it may be anybody's.
 */
#ifndef KELTO_TOOLS_BILINGUAL_PLURAL_FORMS_H
#define KELTO_TOOLS_BILINGUAL_PLURAL_FORMS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

/** A category that numbers of a language have, and some of these numbers. */
struct Category
{
    int variant; // of KTVariant
    std::vector<uint64_t> examples;
};

/** The categories that integers reach in a language, in CLDR's order. */
std::vector<Category> categoriesOf(const std::string &language, bool isOrdinal);

/** "2, 3, 4, 22": the first of them. */
std::string examplesText(const Category &category);

/** The right side of "Plural-Forms: " for a language. */
std::string pluralHeaderOf(const std::string &language);

/** What such a header says. */
class PluralHeader
{
public:
    /** Nothing where it cannot be evaluated. */
    static std::optional<PluralHeader> read(std::string_view header);

    /** The form that a number takes; nothing where the expression divides by zero, or there is no such form. */
    std::optional<unsigned> formOf(uint64_t number) const;
    unsigned forms() const { return m_forms; }

private:
    PluralHeader(unsigned forms, std::string expression) : m_forms(forms), m_expression(std::move(expression)) {}

    unsigned m_forms;
    std::string m_expression;
};

} // namespace tool::bilingual

#endif
