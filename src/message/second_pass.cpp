#include "message/second_pass.h"

#include "lifecycle/global_state.h"
#include "message/escapes.h"
#include "platform/scoped.h"

#include <algorithm>

namespace
{

void append(SecondPassState &pass, const char *bytes, size_t length)
{
    std::memcpy(pass.cursor, bytes, length);
    pass.cursor += length;
}

/** A zero-terminated copy from the memory tag. */
char *copyText(const char *text)
{
    const size_t bytes = std::strlen(text) + 1;
    kelto::TagBlock<char> copy = kelto::allocate<char>(glbResHandle, bytes);
    if (copy != nullptr)
        std::memcpy(copy.get(), text, bytes);
    return copy.release();
}

/** The takePlace of a handler without a guard: it knows no bounds, and accepts all that is there. */
struct IsPresent
{
    bool operator()(const kelto::FileAttributes &file) const { return file.areThere(); }
    bool operator()(int id) const { return id != 0; }
    bool operator()(const kelto::WrittenPlaceholder &placeholder) const { return placeholder.text != nullptr; }
};

} // namespace

kelto::WrittenPlaceholder kelto::measurePlaceholder(const char **attrs, bool raw) noexcept
{
    const Placeholder placeholder = readPlaceholder(attrs);
    if (placeholder.text == nullptr || (placeholder.position == nullptr && !raw))
        return {};
    const size_t length = std::strlen(placeholder.text);
    if (raw)
        return {placeholder.text, length, nullptr, 0};
    return {placeholder.text, length, placeholder.position, std::strlen(placeholder.position)};
}

void kelto::fillFile(SecondPassState &pass, const FileAttributes &file) noexcept
{
    constexpr size_t letters = 2;
    constexpr size_t countryOffset = 3;
    MessageTable &table = *pass.table;
    std::memcpy(table.language, file.language, std::min(letters, file.languageLength));
    table.language[letters] = '\0';
    if (file.namesCountry())
    {
        std::memcpy(table.country, file.language + countryOffset, letters);
        table.country[letters] = '\0';
    }
    table.productName = copyText(file.productName);
    table.productVersion = table.productName != nullptr ? copyText(file.productVersion) : nullptr;
    if (table.productVersion == nullptr)
        pass.error = KT_ERR_NO_MEMORY;
}

void kelto::openMessage(SecondPassState &pass, int id) noexcept
{
    pass.currentId = id;
    if (pass.messages[id] != nullptr)
        pass.error = KT_ERR_BAD_MSG_FILE;
    else
        pass.messages[id] = pass.cursor;
}

void kelto::appendPlaceholder(SecondPassState &pass, const WrittenPlaceholder &placeholder) noexcept
{
    append(pass, placeholder.text, placeholder.textLength);
    if (placeholder.position != nullptr)
    {
        append(pass, "[", 1);
        append(pass, placeholder.position, placeholder.positionLength);
        append(pass, "]", 1);
    }
    pass.inSource = false;
}

void kelto::endInSecondPass(SecondPassState &pass, const ElementMapRow &element) noexcept
{
    if (element.id == ELM_X)
        pass.inSource = true;
    else if (element.id == ELM_SOURCE)
    {
        pass.inSource = false;
        pass.cursor += terminatorBytes;
        handleEscape(pass.messages[pass.currentId]);
    }
}

void startElement2(void *state, const char *name, const char **attrs)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error == 0)
        kelto::startInSecondPass(pass, kelto::findElement(name), attrs, IsPresent());
}

void endElement2(void *state, const char *name)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error == 0)
        kelto::endInSecondPass(pass, kelto::findElement(name));
}

void characterData2(void *state, const char *text, int length)
{
    auto &pass = *static_cast<SecondPassState *>(state);
    if (pass.error == 0 && pass.inSource && length >= 1)
        append(pass, text, static_cast<size_t>(length));
}
