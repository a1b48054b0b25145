// W11, going on: files for translators' programs, written and read back, as the messages grow.

#include "workload.h"

#include "bilingual/forms.h"
#include "bilingual/import.h"
#include "bilingual/xliff/xliff_writer.h"
#include "kelto.h"

namespace bench
{
namespace
{

using namespace tool;
using namespace tool::bilingual;

std::string messageFile(const std::string &language, const std::string &text, size_t count)
{
    std::string file = "<xliff><file source-language=\"" + language +
                       "\" product-name=\"bench\" product-version=\"1.0\"><header/><body>";
    for (size_t id = 1; id <= count; ++id)
        file += "<trans-unit id=\"" + std::to_string(id) + "\"><source>" + text + " " + std::to_string(id) +
                ": <x ts=\"%s\" id=\"1\"/></source></trans-unit>";
    return file + "</body></file></xliff>";
}

/** A reference and its translation, of 25 messages times a size. */
class Files
{
public:
    explicit Files(size_t times)
        : m_reference(messageFile("en", "The file was copied", 25 * times)),
          m_translation(messageFile("de", "Die Datei wurde kopiert", 25 * times))
    {
    }

    std::string exported(std::string (*write)(const Bilingual &, formTable *)) const
    {
        const RemarkedFile reference(check::SourceText("en.xlf", m_reference));
        const RemarkedFile translation(check::SourceText("de.xlf", m_translation));
        Bilingual catalog = bilingualOf(reference, "de");
        addTranslation(catalog, translation);
        return write(catalog, nullptr);
    }

    size_t imported(const std::string &document) const
    {
        RemarkedFile source(check::SourceText("en.xlf", m_reference));
        source.parsed.source().index();
        const check::Reference reference(source.parsed, nullptr);
        return import(readBilingual(check::SourceText("de.xliff", document)), source, reference, check::Levels(), {})
            .counts.finished;
    }

private:
    std::string m_reference, m_translation;
};

struct Family
{
    const char *name;
    std::string (*write)(const Bilingual &, formTable *);
};
constexpr Family families[] = {{"XLIFF 1.2", xliff12Of}, {"XLIFF 2.0", xliff2Of}};

void registerSize(const Family &family, size_t times)
{
    const std::string size = std::to_string(times);
    const auto write = family.write;
    Register("W11/export " + std::string(family.name) + "/" + size, kelto, [times, write] {
        return job([files = Files(times), write, document = std::string()]() mutable {
            document = files.exported(write);
            return std::string_view(document);
        });
    });
    Register("W11/import " + std::string(family.name) + "/" + size, kelto, [times, write] {
        const Files files(times);
        return job([files, document = files.exported(write), times] {
            require(files.imported(document) == 25 * times, "a translation that was exported is not imported");
            return std::string_view(document);
        });
    });
}

const bool areRegistered = [] {
    for (const Family &family : families)
        for (const size_t times : {1, 4, 16, 64})
            registerSize(family, times);
    return true;
}();

} // namespace
} // namespace bench
