#include "text.h"

#include "library/selector.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace tool
{
namespace
{

struct English
{
    Text text;
    const char *format;
};

/** In the order of the numbers. */
constexpr English englishTexts[] = {
#define KELTO_TEXT(id, name, english) {Text::name, english},
#include "texts.inc"
#undef KELTO_TEXT
};

/** Null where there is no such text. */
const char *englishOf(Text text)
{
    const English *const end = std::end(englishTexts);
    const English *const row = std::lower_bound(std::begin(englishTexts), end, text,
                                                [](const English &a, Text wanted) { return a.text < wanted; });
    return row != end && row->text == text ? row->format : nullptr;
}

/** Where the message files of this program lie, from where the program lies. */
std::string messagesFolder()
{
    std::error_code error;
    return (std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / KELTO_MESSAGES).string();
}

/** A catalog of this program's own. */
class OwnCatalog
{
public:
    /** @param languages  null for the user's. */
    OwnCatalog(const char *name, const char *languages)
    {
        KTCatalogOptions options = {};
        options.structSize = sizeof options;
        options.languages = languages;
        options.sourceLanguage = ""; // the English is compiled in
        m_isUsable = KTOpenCatalog(messagesFolder().c_str(), name, &options, &m_catalog) == 0;
    }
    ~OwnCatalog() { KTCloseCatalog(m_catalog); }
    OwnCatalog(const OwnCatalog &) = delete;
    OwnCatalog &operator=(const OwnCatalog &) = delete;

    /** The catalog of the texts; null where the library does not start. */
    bool isUsable() const { return m_isUsable; }
    const KTCatalog *get() const { return m_catalog; }

private:
    KTCatalog *m_catalog = nullptr;
    bool m_isUsable = false;
};

const OwnCatalog &ownTexts()
{
    static const OwnCatalog theTexts("kelto", nullptr);
    return theTexts;
}

/** A text of the help, which lies beside the other texts where it is translated. */
const char *usersHelp(unsigned id)
{
    static const OwnCatalog theHelp("help", KTCatalogLanguage(ownTexts().get()));
    return KTCatalogText(theHelp.get(), id);
}

struct HelpText
{
    unsigned id;
    std::string_view about;
};

constexpr HelpText helpTexts[] = {
#define KELTO_HELP(id, about) {id, about},
#include "helps.inc"
#undef KELTO_HELP
};

/** The English of a text; of one that selects the one for its number, that one. */
const char *englishFor(Text text, const std::vector<Shown> &values)
{
    const char *const english = englishOf(text);
    const auto selector = readSelector(english);
    if (!selector.has_value())
        return english;
    const Shown &number = values.at(selector->argument - 1);
    const bool isOne = number.isNumber && number.number == 1;
    return englishOf(static_cast<Text>(selector->messageAt(isOne ? KT_VARIANT_ONE : KT_VARIANT_OTHER)));
}

/** The text of a message, or of its English where that is of no use: the ladder of catalogs. */
std::string formatted(Text text, const char *english, const std::vector<Shown> &values)
{
    std::vector<KTArgument> arguments;
    arguments.reserve(values.size());
    for (const Shown &value : values)
        arguments.push_back(value.isNumber ? KT_UINT64(value.number)
                                           : KT_UTF8N(value.words.data(), value.words.size()));
    constexpr size_t usual = 200;
    std::string result(usual, '\0');
    size_t size = result.size() + 1;
    while (KTCatalogFormatUTF8(ownTexts().get(), static_cast<unsigned>(text), english, &size, result.data(),
                               arguments.data(), arguments.size()) == KT_ERR_BUFFER_TOO_SMALL)
        result.resize(size++);
    result.resize(size);
    return result;
}

/** A format of ours, which has no flags and no widths, without the library. */
std::string formattedPlainly(std::string_view format, const std::vector<Shown> &values)
{
    std::string result;
    for (size_t at = 0; at < format.size(); ++at)
    {
        if (format[at] != '%')
            result += format[at];
        else if (format[at + 1] == '%')
            result += format[at++];
        else
        {
            const size_t open = format.find('[', at);
            at = format.find(']', open);
            size_t position = 0;
            std::from_chars(format.data() + open + 1, format.data() + at, position);
            if (open > 3 && format.substr(open - 3, 3) == "nil") // takes its value, and writes nothing
                continue;
            const Shown &value = values.at(position - 1);
            result += value.isNumber ? std::to_string(value.number) : value.words;
        }
    }
    return result;
}

/** The values of a phrase, those that are phrases put into words. */
std::vector<Shown> inWords(const std::vector<Shown> &values, std::string (*speak)(const Phrase &))
{
    std::vector<Shown> result = values;
    for (Shown &value : result)
        if (!value.phrase.empty())
            value = Shown(speak(value.phrase[0]));
    return result;
}

} // namespace

std::string say(const Phrase &phrase)
{
    const std::vector<Shown> values = inWords(phrase.values, say);
    const char *const english = englishFor(phrase.text, values);
    return ownTexts().isUsable() ? formatted(phrase.text, english, values) : formattedPlainly(english, values);
}

std::string say(Text text, const std::vector<Shown> &values)
{
    return say(Phrase{text, values});
}

std::string sayInEnglish(const Phrase &phrase)
{
    const std::vector<Shown> values = inWords(phrase.values, sayInEnglish);
    return formattedPlainly(englishFor(phrase.text, values), values);
}

Phrase counted(Text text, size_t count, const std::vector<Shown> &values)
{
    std::vector<Shown> all{count};
    all.insert(all.end(), values.begin(), values.end());
    return {text, all};
}

Shown textNumbered(unsigned number, const char *otherwise, const std::vector<Shown> &values)
{
    const auto text = static_cast<Text>(number);
    if (englishOf(text) == nullptr)
        return otherwise;
    return Phrase{text, values};
}

Shown textOfXmlError(int error, const char *otherwise)
{
    constexpr int errorsAbove = 300;
    return textNumbered(static_cast<unsigned>(errorsAbove + error), otherwise);
}

std::string helpText(const std::string &about, const std::string &english)
{
    const auto *const row = std::find_if(std::begin(helpTexts), std::end(helpTexts),
                                         [&](const HelpText &text) { return text.about == about; });
    const char *const users = row != std::end(helpTexts) ? usersHelp(row->id) : nullptr;
    return users != nullptr ? users : english;
}

std::string resultText(int result)
{
    constexpr int resultsAbove = 8100;
    const Shown shown = textNumbered(static_cast<unsigned>(resultsAbove + result), KTResultText(result));
    return shown.phrase.empty() ? shown.words : say(shown.phrase[0]);
}

namespace
{

/** The number of the text that says what a rule of the library says. */
unsigned textOfRule(int rule)
{
    constexpr int firstOfSelectors = KT_RULE_SELECTOR_ALONE;
    constexpr int selectorsAbove = 730 - firstOfSelectors;
    constexpr int othersAbove = 120;
    return static_cast<unsigned>(rule + (rule < firstOfSelectors ? othersAbove : selectorsAbove));
}

/** What that text shows. */
std::vector<Shown> valuesOf(const KTProblem &problem)
{
    switch (problem.rule)
    {
    case KT_RULE_POSITION_REPEATED:
    case KT_RULE_POSITION_GAP:
        return {problem.position};
    case KT_RULE_SELECTOR_ARGUMENT:
        return {problem.slot, problem.found};
    case KT_RULE_VARIANT_ARGUMENTS:
        return {problem.slot, problem.message};
    case KT_RULE_SELECTOR_DEPTH:
    case KT_RULE_VARIANT_MISSING:
        return {problem.message};
    default:
        return {};
    }
}

} // namespace

Shown problemShown(const KTProblem &problem)
{
    constexpr size_t longestSentence = 400;
    char sentence[longestSentence];
    size_t size = sizeof sentence;
    KTProblemText(&problem, &size, sentence);
    return textNumbered(textOfRule(problem.rule), sentence, valuesOf(problem));
}

} // namespace tool
