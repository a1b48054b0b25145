/** The record in which a call tells its caller what is wrong with a format. */
#ifndef KELTO_FORMAT_GRAMMAR_PROBLEM_REPORT_H
#define KELTO_FORMAT_GRAMMAR_PROBLEM_REPORT_H

#include "format/grammar/format_string.h"

#include <cstddef>
#include <cstring>

namespace kelto
{

/** The record of the caller, which may be null. */
class ProblemReport
{
public:
    explicit ProblemReport(KTProblem *problem) : m_problem(problem)
    {
        if (isUsable())
            set({0, KT_RULE_NONE, 0, 0, 0, 0, nullptr, nullptr, 0});
    }

    bool isUsable() const { return m_problem == nullptr || m_problem->structSize >= smallestSize; }

    void set(const KTProblem &problem) const
    {
        if (m_problem == nullptr)
            return;
        const size_t size = m_problem->structSize;
        std::memcpy(static_cast<void *>(m_problem), &problem, size < sizeof problem ? smallestSize : sizeof problem);
        m_problem->structSize = size;
    }

    void set(const FormatVerdict &verdict) const
    {
        set({0, verdict.rule, 0, verdict.position, verdict.offset, verdict.length, nullptr, nullptr, 0});
    }

private:
    /** The size that the record had in its first version. */
    static constexpr size_t smallestSize = offsetof(KTProblem, message);

    KTProblem *m_problem;
};

} // namespace kelto

#endif
