/** The forms of bilingual files: each with its name, what reads it and what writes it. */
#ifndef KELTO_TOOLS_BILINGUAL_FORMS_H
#define KELTO_TOOLS_BILINGUAL_FORMS_H

#include "bilingual/bilingual_file.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::bilingual
{

struct Form
{
    const char *name;
    const char *extension; // of file names that ask for it
    bool knowsEmpty;       // can say that a text was left empty on purpose; and that a target is a copy of its source
    std::string (*write)(const Bilingual &catalog, formTable *table);
};

const std::vector<Form> &allForms();

/** The form of this name, or null. */
const Form *findForm(std::string_view name);

/** The form that a file name asks for, or null. */
const Form *formOfFile(std::string_view path);

/** Their names, for people: "xliff, xliff2". */
std::string formNames();

/**
 * Reads a bilingual file, whatever form it is of.
 * @param language  of the translation, where the file names none.
 */
BilingualFile readBilingual(const std::string &path, const std::string &language = "");
BilingualFile readBilingual(check::SourceText source, const std::string &language = "");

} // namespace tool::bilingual

#endif
