#include "bilingual/teller.h"

#include "output.h"
#include "terminal.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <unistd.h>

namespace tool::bilingual
{

using namespace check;

namespace
{

/** Findings for people go where diagnostics go; the documents of the others are an output. */
void writeToError(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace

Teller::Teller(const CommandLine &line, const std::string &form, bool isQuiet, const std::string &reference,
               const Levels &levels)
    : m_levels(levels)
{
    const WriterOptions options{form == "text" && Terminal::showsColors(STDERR_FILENO), isQuiet, reference, &m_levels};
    if (form == "text")
        m_writer = textWriter(writeToError, options);
    else if (form == "json")
        m_writer = jsonWriter(print, options);
    else if (form == "sarif")
        m_writer = sarifWriter(print, options);
    else if (form == "github")
        m_writer = githubWriter(print, options);
    else
        throw line.misuse(say(Text::badForm, {terminal().quote(form)}));
    m_writer->begin();
}

void Teller::tell(const std::vector<Diagnostic> &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
    {
        m_writer->write(diagnostic);
        ++(diagnostic.severity == Severity::error ? m_summary.errors : m_summary.warnings);
    }
}

bool Teller::tellErrors(const std::vector<Diagnostic> &diagnostics)
{
    std::vector<Diagnostic> errors;
    std::copy_if(diagnostics.begin(), diagnostics.end(), std::back_inserter(errors),
                 [](const Diagnostic &found) { return found.severity == Severity::error; });
    tell(errors);
    return errors.empty();
}

bool Teller::tellErrors(Findings findings, SourceText &source)
{
    return tellErrors(report(std::move(findings), source, nullptr, m_levels));
}

void Teller::finish(size_t files)
{
    m_summary.files = files;
    m_writer->end(m_summary);
}

} // namespace tool::bilingual
