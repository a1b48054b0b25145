#include "check/rules/files/empty_messages.h"

#include "check/texts/blanks.h"

namespace tool::check
{

void checkEmptiness(Subject &subject)
{
    const bool isMeant = subject.hasOriginal() && isBlank(subject.originalText());
    const bool mayBeBlank = !subject.text().empty() && !subject.hasOriginal();
    if (!isBlank(subject.text()))
    {
        if (isMeant)
            subject.find(Rule::otherMeaning, subject.message().source, {Text::textForNone});
    }
    else if (!isMeant && !mayBeBlank)
        subject.find(Rule::emptyMessage, subject.message().source, {Text::noText});
}

} // namespace tool::check
