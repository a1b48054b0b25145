#include "check/rules/files/outdated.h"

#include "check/texts/digest.h"

namespace tool::check
{

void compareAge(Subject &subject)
{
    const Message &here = subject.message();
    if (!here.madeFrom.empty() && here.madeFrom != digestOf(subject.originalText()))
        subject.find(Rule::outdated, subject.parsed().locateAttribute(here.unit, sourceDigest), {Text::madeFromOther},
                     Note{true, subject.original().source, {Text::referenceIsHere}});
}

} // namespace tool::check
