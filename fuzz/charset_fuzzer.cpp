// A character set, bytes, and a function: conversions are compared with ICU called directly, the others with what they
// promise of their destination.

#include "strconv/conversion_checks.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

// Single-byte, double-byte, stateful, with several bytes for an ASCII letter, with zero bytes; and every other one.
constexpr const char *charSets[] = {"utf-8",
                                    "shift_jis",
                                    "EUC-JP",
                                    "GB18030",
                                    "ISO-2022-JP",
                                    "UTF-7",
                                    "SCSU",
                                    "UTF-16",
                                    "UTF-32",
                                    "HZ",
                                    "LMBCS",
                                    "ISO-2022-KR",
                                    "MS932",
                                    "BOCU-1",
                                    "cp1047",
                                    "koi8-r",
                                    "IMAP-mailbox-name",
                                    "CESU-8",
                                    "Big5-HKSCS"};

std::string takeCharSet(FuzzedDataProvider &source)
{
    switch (source.ConsumeIntegralInRange(0, 3))
    {
    case 0:
        return source.ConsumeRandomLengthString(20).c_str();
    case 1:
        return ucnv_getAvailableName(source.ConsumeIntegralInRange(0, ucnv_countAvailable() - 1));
    default:
        return source.PickValueInArray(charSets);
    }
}

void checkStrings(const char *charSet, const std::string &text, const char *otherSet, const std::string &other,
                  unsigned number)
{
    const size_t room = text.size() + 1;
    const long length = KTMultiByteStrclen(charSet, text.c_str());
    require(length <= static_cast<long>(room), "a byte gives no more than a character");
    require(KTMultiByteStrblen(text.c_str()) == text.size(), "the length in bytes");
    require(length > 0 || KTFirstChar(charSet, text.c_str()) == 0, "where nothing is, nothing is first");

    Guarded<char> stepped = text, copied(room), upper(room), tail(room);
    for (unsigned steps = 0; steps < 3; ++steps)
        KTNextChar(charSet, stepped.data());
    require(stepped.isTerminated(), "a text that is stepped through stays one");

    char *const copy = KTMultiByteStrncpy(copied.data(), charSet, text.c_str(), number % 20);
    require(copy == nullptr || (copy == copied.data() && copied.isTerminated()), "a copy ends in its room");
    size_t size = 0;
    const long bytes = KTMultiByteStrupr(charSet, text.c_str(), &size, upper.data());
    require(bytes < 0 || (static_cast<size_t>(bytes) == size && size < room && upper[size] == '\0'),
            "upper case ends in its room");
    const char *const found = KTMultiByteStrstr(charSet, text.c_str(), otherSet, other.c_str());
    require(found == nullptr || (found >= text.c_str() && found <= text.c_str() + text.size()),
            "what is found lies in the text");
    char *const last = KTMultiByteStrrchr(charSet, text.c_str(), otherSet, number, tail.data());
    require(last == nullptr || (last == tail.data() && tail.isTerminated()), "a tail ends in its room");

    const int forth = KTMultiByteStrcmp(charSet, text.c_str(), otherSet, other.c_str());
    const int back = KTMultiByteStrcmp(otherSet, other.c_str(), charSet, text.c_str());
    const bool isCode = forth <= KT_ERR_NOT_INITIALIZED && forth >= KT_ERR_NO_MEMORY;
    require(isCode || (forth < 0) == (back > 0), "a comparison turned round has the other sign");
    require(forth != 0 || KTMultiByteStricmp(charSet, text.c_str(), otherSet, other.c_str()) == 0,
            "equal texts are equal without case");

    require(KTUCharToMBChar(charSet, static_cast<UCS2>(number)) <= 0xFFFFFF, "a character has three bytes at most");
    require(KTMBCharToUChar(charSet, number) == KTMBCharToUChar(charSet, number & 0xFFFF), "two bytes count");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider source(data, size);
    const std::string charSet = takeCharSet(source);
    const std::string otherSet = source.ConsumeBool() ? charSet : takeCharSet(source);
    const size_t capacity = source.ConsumeIntegralInRange<size_t>(0, 60);
    const auto number = source.ConsumeIntegral<unsigned>();
    const std::string other = source.ConsumeRandomLengthString(20).c_str();
    const std::string bytes = source.ConsumeRemainingBytesAsString().c_str();
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        units +=
            static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << 8 | static_cast<unsigned char>(bytes[i + 1]));
    checkConversions(charSet.c_str(), bytes, units.c_str(), capacity);
    checkStrings(charSet.c_str(), bytes, otherSet.c_str(), other, number);
    return 0;
}
