#include "bilingual/selectors.h"

#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"
#include "check/catalog_builder.h"
#include "text.h"

#include <algorithm>
#include <climits>
#include <set>

namespace tool::bilingual
{
namespace
{

constexpr std::string_view digits = "0123456789";

/** Takes a number off the beginning of a text; nothing where there is none, or a large one. */
std::optional<int> takeNumber(std::string_view &text)
{
    const size_t end = std::min(text.find_first_not_of(digits), text.size());
    int64_t number = 0;
    for (const char digit : text.substr(0, end))
        if ((number = number * 10 + (digit - '0')) > INT_MAX)
            return std::nullopt;
    text.remove_prefix(end);
    return end > 0 ? std::optional(static_cast<int>(number)) : std::nullopt;
}

bool takeWord(std::string_view &text, std::string_view word)
{
    if (text.substr(0, word.size()) != word)
        return false;
    text.remove_prefix(word.size());
    return true;
}

constexpr std::pair<std::string_view, Selector::Kind> kinds[] = {
    {"plural", Selector::Kind::plural}, {"ordinal", Selector::Kind::ordinal}, {"select", Selector::Kind::select}};

} // namespace

std::optional<Selector> readSelector(const std::string &message)
{
    std::string_view rest = message;
    if (!takeWord(rest, "%"))
        return std::nullopt;
    const std::optional<int> row = takeNumber(rest);
    if (!row || *row == 0)
        return std::nullopt;
    int shown = 0;
    if (takeWord(rest, "."))
        shown = takeNumber(rest).value_or(0);
    for (const auto &[name, kind] : kinds)
        if (takeWord(rest, name))
        {
            const bool isClosed = takeWord(rest, "[") && takeNumber(rest) && rest == "]";
            return isClosed ? std::optional(Selector{kind, *row, shown, message}) : std::nullopt;
        }
    return std::nullopt;
}

std::string labelAt(const Selector &selector, int place)
{
    return selector.kind == Selector::Kind::select ? "=" + std::to_string(place) : variantLabels[place];
}

std::optional<int> placeOf(const Selector &selector, const std::string &label)
{
    for (int place = 0; place < selector.places(); ++place)
        if (label == labelAt(selector, place))
            return place;
    return std::nullopt;
}

Rows::Rows(const check::Catalog &catalog)
{
    for (const check::Message &message : catalog.messages())
    {
        m_messages.emplace(message.id, &message);
        if (const std::optional<Selector> selector = readSelector(unescaped(catalog.rawText(message))))
            m_selectors.emplace(message.id, *selector);
    }
    for (const auto &[number, selector] : m_selectors)
        for (int place = 0; place < selector.places() && selector.row <= INT_MAX - place; ++place)
            if (m_messages.count(selector.row + place) > 0)
                m_keys.emplace(selector.row + place, Key{number, labelAt(selector, place)});
}

const Selector *Rows::find(int number) const
{
    const auto found = m_selectors.find(number);
    return found != m_selectors.end() ? &found->second : nullptr;
}

const Key *Rows::keyOf(int id) const
{
    const auto found = m_keys.find(id);
    return found != m_keys.end() ? &found->second : nullptr;
}

const check::Message *Rows::message(int id) const
{
    const auto found = m_messages.find(id);
    return found != m_messages.end() ? found->second : nullptr;
}

const check::Message *Rows::variant(int number, int place) const
{
    const Selector *const selector = find(number);
    if (selector == nullptr || selector->row > INT_MAX - place || find(selector->row + place) != nullptr)
        return nullptr;
    return message(selector->row + place);
}

const check::Message *Rows::sourceFor(int number, int place) const
{
    const Selector *const selector = find(number);
    if (selector == nullptr)
        return message(number);
    const bool isOwn = selector->kind != Selector::Kind::plural || place == KT_VARIANT_ONE || place > KT_VARIANT_OTHER;
    const check::Message *const own = variant(number, place);
    if (isOwn && own != nullptr)
        return own;
    // One text for "one" and one for all others, as PO files have it.
    const int others = selector->kind == Selector::Kind::select ? 0 : KT_VARIANT_OTHER;
    if (const check::Message *const other = variant(number, others))
        return other;
    for (const int instead : {KT_VARIANT_MANY, KT_VARIANT_FEW, KT_VARIANT_TWO, KT_VARIANT_ONE, KT_VARIANT_ZERO})
        if (const check::Message *const message = variant(number, instead))
            return message;
    return own;
}

CountArgument countArgumentOf(const check::Format &format)
{
    using check::Kind;
    unsigned argument = 0;
    for (const size_t index : format.byPosition)
        for (const check::Slot &slot : format.conversions[index].slots)
        {
            ++argument;
            const bool isInteger =
                slot.kind == Kind::integer16 || slot.kind == Kind::integer32 || slot.kind == Kind::integer64;
            if (isInteger && slot.role == check::Slot::Role::value)
                return {argument, format.conversions[index].position, slot.kind};
        }
    return {};
}

std::vector<int> neededPlaces(const Selector &selector, const std::string &language)
{
    std::vector<int> places;
    if (selector.kind == Selector::Kind::select)
        return places;
    for (const Category &category : categoriesOf(language, selector.kind == Selector::Kind::ordinal))
        places.push_back(category.variant);
    constexpr int mostDigits = 3;
    for (int shown = 1; shown <= std::min(selector.digits, mostDigits); ++shown)
        for (int tenths = 0; tenths < 210; ++tenths) // and what has digits behind the mark
        {
            const int place = KTPluralCategory(language.c_str(), false, KT_DOUBLE(tenths / 10.0), selector.digits);
            if (place >= 0 && std::find(places.begin(), places.end(), place) == places.end())
                places.push_back(place);
        }
    std::sort(places.begin(), places.end());
    return places;
}

std::string exampleFor(const Selector &selector, int place, const std::string &language)
{
    if (selector.kind == Selector::Kind::select || place > KT_VARIANT_OTHER)
        return "";
    for (const Category &category : categoriesOf(language, selector.kind == Selector::Kind::ordinal))
        if (category.variant == place)
            return sayInEnglish({Text::examplesOf, {variantLabels[place], examplesText(category)}});
    return "";
}

check::Catalog withoutSelectors(const check::Catalog &catalog, const Rows &rows)
{
    const check::SourceText &source = catalog.source();
    check::CatalogBuilder builder(source, catalog.body());
    builder.setLanguage(catalog.language(), catalog.languagePlace());
    for (const check::Message &message : catalog.messages())
        if (rows.find(message.id) == nullptr)
            builder.addCopy(catalog, message, message.id);
    return builder.take();
}

} // namespace tool::bilingual
