#include "message/grammar/xml_parser.h"

// Functions that not every version of expat has; null where they are missing.
extern "C" {
__attribute__((weak)) XML_Bool XML_SetReparseDeferralEnabled(XML_Parser parser, XML_Bool enabled);
__attribute__((weak)) XML_Bool XML_SetBillionLaughsAttackProtectionActivationThreshold(XML_Parser parser,
                                                                                       unsigned long long bytes);
}

bool kelto::Parser::create() noexcept
{
    m_parser.reset();
    m_parser.reset(XML_ParserCreate(nullptr));
    if (m_parser == nullptr)
        return false;
    // Where a parser defers the end of a token, events come with a later chunk than they do from other versions.
    if (XML_SetReparseDeferralEnabled != nullptr)
        XML_SetReparseDeferralEnabled(get(), XML_FALSE);
    if (XML_SetBillionLaughsAttackProtectionActivationThreshold != nullptr)
        XML_SetBillionLaughsAttackProtectionActivationThreshold(get(), XmlLimits::unquestionedBytes);
    return true;
}
