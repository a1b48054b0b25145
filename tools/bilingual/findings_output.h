/** Findings as all bilingual commands tell them, in the forms of `kelto check`, and their counts. */
#ifndef KELTO_TOOLS_BILINGUAL_FINDINGS_OUTPUT_H
#define KELTO_TOOLS_BILINGUAL_FINDINGS_OUTPUT_H

#include "check/telling/finding.h"
#include "check/telling/writers.h"
#include "command_line.h"

#include <memory>
#include <string>

namespace tool::bilingual
{

class FindingsOutput
{
public:
    /**
     * @param form       "text", "json", "sarif" or "github".
     * @param reference  the name of the file that others are compared with, or empty.
     */
    FindingsOutput(const CommandLine &line, const std::string &form, bool isQuiet, const std::string &reference,
                   const check::Levels &levels);

    void tell(const std::vector<check::Diagnostic> &diagnostics);

    /** Tells the errors alone; false where there are any. */
    bool tellErrors(const std::vector<check::Diagnostic> &diagnostics);
    bool tellErrors(check::Findings findings, check::SourceText &source);

    /** Closes the document. */
    void finish(size_t files);

    size_t errors() const { return m_summary.errors; }

private:
    const check::Levels &m_levels;
    std::unique_ptr<check::Writer> m_writer;
    check::Summary m_summary;
};

} // namespace tool::bilingual

#endif
