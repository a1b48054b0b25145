#include "check/rules/marks/markup.h"

#include "check/texts/characters.h"

#include <algorithm>
#include <optional>

namespace tool::check
{
namespace
{

constexpr bool isOfName(char byte)
{
    return isAsciiLetter(byte) || isAsciiDigit(byte) || byte == '-' || byte == '_' || byte == ':';
}

constexpr bool isSpaceInTag(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

struct Tag
{
    Range place;
    std::string_view name; // as "b", "/b" or "br/"
    bool isBroken = false; // it begins as a tag and goes on as none
};

/** The names that are markup wherever they stand; others are where the reference closes them. */
bool isKnown(std::string_view name)
{
    constexpr std::string_view names[] = {
        "a",   "abbr", "b",     "big",   "blockquote", "body", "br",    "center", "code",  "dd",   "div",    "dl",
        "dt",  "em",   "font",  "h1",    "h2",         "h3",   "h4",    "head",   "hr",    "html", "i",      "img",
        "kbd", "li",   "ol",    "p",     "pre",        "q",    "s",     "samp",   "small", "span", "strong", "style",
        "sub", "sup",  "table", "tbody", "td",         "th",   "title", "tr",     "tt",    "u",    "ul",     "var"};
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/** Reads attributes up to the end of a tag. @return where the text goes on behind '>'; 0 where no tag ends so. */
size_t behindAttributes(std::string_view text, size_t at)
{
    while (at < text.size())
    {
        const size_t begin = at;
        while (at < text.size() && isSpaceInTag(text[at]))
            ++at;
        if (at < text.size() && text[at] == '/')
            ++at;
        if (at < text.size() && text[at] == '>')
            return at + 1;
        if (at == begin || at >= text.size() || !isOfName(text[at]))
            return 0;
        while (at < text.size() && isOfName(text[at]))
            ++at;
        if (at >= text.size() || text[at] != '=')
            continue;
        const char quotation = at + 1 < text.size() ? text[at + 1] : '\0';
        if (quotation == '"' || quotation == '\'')
            at = text.find(quotation, at + 2);
        else // a value without quotation marks ends in front of one
        {
            at = std::min(text.find_first_of(" \t\r\n>\"'", at + 1), text.size());
            const auto isBeyondAscii = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
            if (std::any_of(text.begin() + static_cast<std::ptrdiff_t>(begin),
                            text.begin() + static_cast<std::ptrdiff_t>(at), isBeyondAscii))
                return 0;
            continue;
        }
        if (at == std::string_view::npos)
            return 0;
        ++at;
    }
    return 0;
}

std::optional<Tag> tagAt(std::string_view text, size_t begin)
{
    size_t at = begin + 1;
    if (at < text.size() && text[at] == '/')
        ++at;
    if (at >= text.size() || !isAsciiLetter(text[at]))
        return std::nullopt;
    while (at < text.size() && isOfName(text[at]))
        ++at;
    const bool isName = at < text.size() && (isSpaceInTag(text[at]) || text[at] == '/' || text[at] == '>');
    if (!isName)
        return std::nullopt;
    Tag tag{{begin, at}, text.substr(begin + 1, at - begin - 1)};
    const size_t end = behindAttributes(text, at);
    tag.isBroken = end == 0;
    tag.place.end = end != 0 ? end : at;
    return tag;
}

std::string_view bareName(std::string_view name)
{
    return name.substr(name[0] == '/' ? 1 : 0);
}

std::vector<Tag> tagsIn(std::string_view text)
{
    std::vector<Tag> tags;
    for (size_t at = text.find('<'); at < text.size(); at = text.find('<', at))
    {
        const std::optional<Tag> tag = tagAt(text, at);
        if (tag)
            tags.push_back(*tag);
        at = tag ? tag->place.end : at + 1;
    }
    return tags;
}

bool hasTag(const std::vector<Tag> &tags, std::string_view name, bool isClosing)
{
    return std::any_of(tags.begin(), tags.end(), [name, isClosing](const Tag &tag) {
        return (tag.name[0] == '/') == isClosing && bareName(tag.name) == name;
    });
}

/** Removes tags that are no markup, as "<file>" for a word to be replaced. */
void keepMarkup(std::vector<Tag> &tags, const std::vector<Tag> &original)
{
    const auto isOther = [&original](const Tag &tag) {
        const std::string_view name = bareName(tag.name);
        return !isKnown(name) && !hasTag(original, name, true);
    };
    tags.erase(std::remove_if(tags.begin(), tags.end(), isOther), tags.end());
}

/** The first tag that closes nothing or is not closed; null where all are in pairs, or are none. */
const Tag *unpaired(const std::vector<Tag> &tags)
{
    std::vector<const Tag *> open;
    for (const Tag &tag : tags)
    {
        const std::string_view name = bareName(tag.name);
        if (name == "br" || name == "hr" || name == "img" || name == "p" || name == "li")
            continue;
        if (tag.name[0] != '/')
            open.push_back(&tag);
        else if (open.empty() || open.back()->name != name)
            return &tag;
        else
            open.pop_back();
    }
    return open.empty() ? nullptr : open.back();
}

size_t countOf(const std::vector<Tag> &tags, std::string_view name)
{
    return static_cast<size_t>(
        std::count_if(tags.begin(), tags.end(), [name](const Tag &tag) { return tag.name == name; }));
}

/** References as "&nbsp;" that have lost a part of themselves. */
void compareReferences(Subject &subject)
{
    const std::string_view there = subject.originalText();
    const std::string_view here = subject.text();
    for (size_t at = there.find('&'); at < there.size(); at = there.find('&', at + 1))
    {
        const size_t end = there.find(';', at);
        if (end == std::string_view::npos)
            return;
        const std::string_view name = there.substr(at + 1, end - at - 1);
        if (name.size() < 2 || name.size() > 8 ||
            !std::all_of(name.begin(), name.end(), [](char byte) { return isAsciiLetter(byte); }))
            continue;
        const std::string whole = "&" + std::string(name) + ";";
        if (here.find(whole) != std::string_view::npos)
            continue;
        for (const std::string &part : {"&" + std::string(name), "& " + std::string(name), std::string(name) + ";"})
            if (const size_t place = here.find(part); place != std::string_view::npos)
            {
                subject.find(Rule::markupChanged, subject.placeOf({place, place + part.size()}),
                             {Text::markupBroken, {quotation(part)}});
                break;
            }
    }
}

} // namespace

void compareMarkup(Subject &subject)
{
    const std::string_view there = subject.originalText();
    const std::string_view here = subject.text();
    if (there.find('&') != std::string_view::npos)
        compareReferences(subject);
    if (there.find('<') == std::string_view::npos && here.find('<') == std::string_view::npos)
        return;
    std::vector<Tag> original = tagsIn(there);
    std::vector<Tag> tags = tagsIn(here);
    const std::vector<Tag> all = original;
    keepMarkup(original, all);
    keepMarkup(tags, all);
    const auto isBroken = [](const Tag &tag) { return tag.isBroken; };
    const auto broken = std::find_if(tags.begin(), tags.end(), isBroken);
    if (broken != tags.end() && std::none_of(original.begin(), original.end(), isBroken))
        return subject.find(Rule::markupChanged, subject.placeOf(broken->place),
                            {Text::markupBroken, {quotation(here.substr(broken->place.begin, 60))}});
    if (original.empty())
        return;
    for (const Tag &tag : original)
        if (countOf(tags, tag.name) < countOf(original, tag.name))
            return subject.find(Rule::markupChanged, subject.message().source,
                                {Text::markupLost, {"<" + quotation(tag.name) + ">"}},
                                Note{true, subject.placeOfOriginal(tag.place), {Text::referenceHasItHere}});
    const Tag *const alone = unpaired(original) == nullptr ? unpaired(tags) : nullptr;
    if (alone != nullptr)
        subject.find(Rule::markupChanged, subject.placeOf(alone->place),
                     {Text::markupUnpaired, {"<" + quotation(alone->name) + ">"}});
}

} // namespace tool::check
