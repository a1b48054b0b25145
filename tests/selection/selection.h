/** Tables of messages that select others, and what becomes of one: by the prepared way and by that of the text. */
#ifndef KELTO_TESTS_SELECTION_SELECTION_H
#define KELTO_TESTS_SELECTION_SELECTION_H

#include "kelto.h"
#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using Messages = std::map<unsigned, std::string>;

inline MessageTable *loadMessages(const Messages &messages, const std::string &language = "en")
{
    static char path[] = "selection.xlf";
    MessageFile file;
    file.attribute("source-language", language);
    for (const auto &[id, text] : messages)
        file.unit(static_cast<long>(id), escaped(text));
    FakeZel::file(path, file.xml());
    MessageTable *table = nullptr;
    EXPECT_EQ(KTLoadMessages(path, &table), 0);
    return table;
}

/** The text that a prepared format makes of arguments, or the name of its result. */
inline std::string formatted(const KTPreparedFormat *prepared, const std::vector<KTArgument> &arguments)
{
    char text[400];
    size_t size = sizeof text;
    const int result = KTFormatPreparedUTF8(prepared, 0, nullptr, &size, text, arguments.data(), arguments.size());
    return result == 0 ? std::string(text, size) : KTResultName(result);
}

/** The same of a message. */
inline std::string prepared(MessageTable *table, unsigned id, const char *locale,
                            const std::vector<KTArgument> &arguments)
{
    KTPreparedFormat *message = nullptr;
    const int result = KTPrepareMessage(table, id, locale, nullptr, &message);
    KTProblem problem = {sizeof problem, 0, 0, 0, 0, 0, nullptr, nullptr, 0};
    EXPECT_EQ(KTExplainMessage(table, id, nullptr, &problem), result);
    EXPECT_EQ(problem.rule == KT_RULE_NONE, result == 0);
    EXPECT_EQ(message == nullptr, result != 0);
    const std::string text = result == 0 ? formatted(message, arguments) : KTResultName(result);
    KTFreePrepared(message);
    return text;
}

/** The same by way of the message that is selected, whose number is told. */
inline std::string selected(MessageTable *table, unsigned &id, const char *locale,
                            const std::vector<KTArgument> &arguments)
{
    char *message = nullptr;
    if (const int result = KTSelectMessage(table, &id, locale, arguments.data(), arguments.size(), &message))
        return KTResultName(result);
    if (message == nullptr)
        return id == 0 ? "none" : "no message, but a number";
    formTable *forms = nullptr;
    EXPECT_EQ(KTGetVariantFormTable(&forms), 0);
    KTPreparedFormat *format = nullptr;
    const int result = KTPrepareFormat(message, forms, &format);
    const std::string text = result == 0 ? formatted(format, arguments) : KTResultName(result);
    KTFreePrepared(format);
    return text;
}

#endif
