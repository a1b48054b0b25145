#include "bilingual/forms.h"

#include "bilingual/gettext/po_reader.h"
#include "bilingual/gettext/po_writer.h"
#include "bilingual/message_file_entries.h"
#include "bilingual/xliff/xliff_reader.h"
#include "bilingual/xliff/xliff_writer.h"

namespace tool::bilingual
{
const std::vector<Form> &allForms()
{
    static const std::vector<Form> forms = {
        {"xliff", ".xliff", true, xliff12Of}, {"xliff2", ".xlf2", true, xliff2Of}, {"po", ".po", false, poOf}};
    return forms;
}

const Form *findForm(std::string_view name)
{
    for (const Form &form : allForms())
        if (name == form.name)
            return &form;
    return nullptr;
}

const Form *formOfFile(std::string_view path)
{
    for (const Form &form : allForms())
    {
        const std::string_view extension = form.extension;
        if (path.size() > extension.size() && path.substr(path.size() - extension.size()) == extension)
            return &form;
    }
    return nullptr;
}

std::string formNames()
{
    std::string names;
    for (const Form &form : allForms())
        names += (names.empty() ? "" : ", ") + std::string(form.name);
    return names;
}

BilingualFile readBilingual(const std::string &path, const std::string &language)
{
    return readBilingual(readSource(path), language);
}

BilingualFile readBilingual(check::SourceText source, const std::string &language)
{
    return isPo(source.bytes()) ? readPo(std::move(source), language) : readXliff(std::move(source));
}

} // namespace tool::bilingual
