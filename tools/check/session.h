/**
 * A run over files: each is checked beside its reference, several at once, and told in the order in which they were
 * given, the references first.
 */
#ifndef KELTO_TOOLS_CHECK_SESSION_H
#define KELTO_TOOLS_CHECK_SESSION_H

#include "check/file_check.h"
#include "check/inputs.h"
#include "check/telling/baseline.h"
#include "check/telling/writers.h"
#include "subcommand.h"

#include <memory>
#include <string>
#include <vector>

namespace tool::check
{

/** The settings with which all files are checked. */
struct Setting
{
    Placeholders placeholders = Placeholders::positioned;
    formTable *table = nullptr; // null with --raw
    Levels levels;
    std::string stdinName;
    unsigned complete = 0; // the wanted share of the reference in percent; 0 for any
    size_t limit = 1000;
    Baseline *baseline = nullptr;    // or null
    BaselineWriter *known = nullptr; // or null; takes the findings that it can hold
};

/** The files that others are compared with. */
class References
{
public:
    /** Reads them; throws where that fails. */
    References(const std::vector<std::string> &paths, const Setting &setting);
    ~References();
    References(const References &) = delete;
    References &operator=(const References &) = delete;

    /** The reference of this number; null for Input::none. */
    const Reference *at(size_t index) const;

    /** The findings in each reference by itself, and the translations of it that a folder lacks. */
    std::vector<Report> reports(const Inputs &inputs, const Setting &setting) const;

private:
    struct Row;
    std::vector<std::unique_ptr<Row>> m_rows;
};

ExitStatus checkInputs(const Inputs &inputs, const References &references, const Setting &setting, Writer &writer,
                       size_t jobs);

} // namespace tool::check

#endif
