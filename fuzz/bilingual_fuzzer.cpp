// An input is a bilingual file as translators' programs might leave it, beside the reference bilingual.xlf: one target
// for each form, which differ in what they begin with and in what an updated file is written as. What is imported
// loads, and the checker accepts it; what an update writes is read as it was meant. Some PO files are read as those of
// a program that used gettext. kelto-po is started for each, with its sanitizers: that it ends without a signal is a
// property too.

#include "bilingual/forms.h"
#include "bilingual/gettext/assign.h"
#include "bilingual/gettext/po_reader.h"
#include "bilingual/import.h"
#include "bilingual/update.h"
#include "failure.h"
#include "kelto.h"
#include "stats/html_page.h"
#include "support/fake_zel.h"
#include "support/require.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace
{

using namespace tool;
using namespace tool::bilingual;

char path[] = "messages.xlf";

/** What all inputs are compared with. */
struct Setting
{
    Setting()
    {
        KTInit();
        forms.add("nil=int");
        source.parsed.source().index();
    }

    const Form &form = *findForm(KELTO_FUZZ_FORM);
    check::Levels levels;
    check::FormTable forms;
    RemarkedFile source = RemarkedFile::read(KELTO_FUZZ_REFERENCE);
    check::Reference reference{source.parsed, forms.get()};
};

void requireAccepted(MessageDocument document, Setting &setting, const check::Reference *reference)
{
    const std::string file = messageFileOf(std::move(document), setting.forms.get());
    require(originOf(file) == Origin::untouched, "what is written knows that it is ours");
    const check::ParsedFile parsed(check::SourceText("out", file), Placeholders::positioned);
    require(parsed.findings().empty(), "what is imported is a message file");
    for (const check::Finding &finding : checkMessages(parsed, setting.forms.get(), reference))
        require(setting.levels[finding.rule] != check::Severity::error, sayInEnglish(finding.text).c_str());
    FakeZel::file(path, file);
    MessageTable *table = nullptr;
    require(KTLoadMessages(path, &table) == 0 && KTFreeMessages(table) == 0, "what is imported loads");
}

bool areAlike(const Entry &a, const Entry &b)
{
    const bool hasTarget = a.state != State::untranslated;
    return a.key == b.key && a.source == b.source && a.state == b.state && (!hasTarget || a.target == b.target) &&
           a.isObsolete == b.isObsolete &&
           (a.state != State::fuzzy || a.previousSource.value_or("") == b.previousSource.value_or(""));
}

/** An update takes over what it finds, and what it writes says so. */
void requireUpdated(const Bilingual &old, bool copiesSource, Setting &setting)
{
    Bilingual catalog = bilingualOf(setting.source, old.targetLanguage);
    update(catalog, old);
    catalog.copiesSource = copiesSource;
    noteArguments(catalog, setting.forms.get());
    const std::string document = setting.form.write(catalog, setting.forms.get());
    const BilingualFile again = readBilingual(check::SourceText("again", document));
    require(again.isWhole, "what is written is read");
    if (!setting.form.knowsEmpty)
        return;
    const std::vector<Entry> &entries = again.content.entries;
    require(std::equal(entries.begin(), entries.end(), catalog.entries.begin(), catalog.entries.end(), areAlike),
            "what is written is read as it was meant");
}

void run(const std::string &input, Setting &setting)
{
    const unsigned way = input.size() % 4;
    if (!setting.form.knowsEmpty && way == 0)
    {
        NumbersFile numbers;
        const check::SourceText text("m", input);
        requireAccepted(assignNumbers(readGettext(text), numbers, "en", setting.forms.get(), setting.levels).document,
                        setting, nullptr);
        return;
    }
    const BilingualFile file = readBilingual(check::SourceText("m", input));
    Imported imported =
        import(file, setting.source, setting.reference, setting.levels, {setting.forms.get(), way > 1, "de"});
    stats::pageOf("en.xlf", "en", {{"m", imported.language, imported.counts, imported.unfinished}},
                  setting.forms.get());
    requireAccepted(std::move(imported.document), setting, &setting.reference);
    const std::vector<Entry> &entries = file.content.entries;
    const bool isRefused =
        std::any_of(entries.begin(), entries.end(), [](const Entry &e) { return !e.findings.empty(); });
    const bool isUpdated = setting.form.knowsEmpty ? way != 1 : way == 2; // PO takes two more processes for it
    if (isUpdated && !isRefused)
        requireUpdated(file.content, input.size() % 8 > 3, setting);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FakeZel::reset();
    static Setting setting;
    std::string input(reinterpret_cast<const char *>(data), size);
    if (setting.form.knowsEmpty && isPo(input))
        return 0; // that is another target's
    if (!setting.form.knowsEmpty && !isPo(input))
        return 0;
    try
    {
        run(input, setting);
    }
    catch (const Failure &failure)
    {
        require(!setting.form.knowsEmpty && std::strstr(failure.what(), "signal") == nullptr, failure.what());
    }
    return 0;
}

/** A fault of kelto-po is to be a signal, and words are to be English. */
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    setenv("ASAN_OPTIONS", "abort_on_error=1:detect_leaks=0", 1);
    setenv("UBSAN_OPTIONS", "abort_on_error=1", 1);
    setenv("LANGUAGE", "en", 1);
    return 0;
}
