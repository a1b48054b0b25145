/** Texts and attributes as XML documents hold them, for what writes such documents by hand. */
#ifndef KELTO_TOOLS_BILINGUAL_XML_H
#define KELTO_TOOLS_BILINGUAL_XML_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool::bilingual
{

/** A name and its value, as the document means it. */
using Attribute = std::pair<std::string, std::string>;
using Attributes = std::vector<Attribute>;

/** The attributes of a tag, as expat hands them out: name and value in turn, then null. */
Attributes attributesFrom(const char *const *attributes);

/** A text between tags; a character that a reader would take for another is written as a reference. */
std::string xmlText(std::string_view text);

/** ` name="value"`. */
std::string xmlAttribute(std::string_view name, std::string_view value);

/** All of them, in their order. */
std::string xmlAttributes(const Attributes &attributes);

/** The value of one of them, or null. */
const std::string *findAttribute(const Attributes &attributes, std::string_view name);

} // namespace tool::bilingual

#endif
