// Converting between character sets: Kelto, ICU's functions called directly, and iconv.

#include "workload.h"

#include "kelto.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <cstring>
#include <iconv.h>

namespace bench
{
namespace
{

constexpr size_t largeBytes = 65536;

/** Text of at most so many bytes in which no character is cut: pieces of several scripts, over and over. */
std::string mixedText(size_t bytes)
{
    const std::string_view pieces[] = {u8"Messages: ", u8"Grüße, ",       u8"мир ",
                                       u8"メッセージ", u8", \U0001F5C2 ", u8"文 "};
    std::string text;
    for (size_t i = 0; text.size() + pieces[i % std::size(pieces)].size() <= bytes; ++i)
        text += pieces[i % std::size(pieces)];
    text.append(bytes - text.size(), '.');
    return text;
}

std::string shiftJisText(size_t bytes)
{
    const std::string_view piece = "\x83\x81\x83\x62\x83\x5A\x81\x5B\x83\x57 No. 7: "
                                   "\x83\x74\x83\x40\x83\x43\x83\x8B\xB6\xC5 "; // Katakana of both widths
    std::string text;
    while (text.size() + piece.size() <= bytes)
        text += piece;
    text.append(bytes - text.size(), '.');
    return text;
}

std::u16string wide(const std::string &text)
{
    std::u16string units(text.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                  static_cast<int32_t>(text.size()), &status);
    require(U_SUCCESS(status), "a text of the benchmarks is no UTF-8");
    units.resize(static_cast<size_t>(length));
    return units;
}

std::unique_ptr<Job> keltoIn(size_t bytes)
{
    return job([text = mixedText(bytes), out = std::u16string(bytes + 1, u'\0')]() mutable {
        size_t units = out.size();
        KTUTF8ToUCS2(text.c_str(), &units, out.data());
        return std::u16string_view(out.data(), units);
    });
}

std::unique_ptr<Job> icuIn(size_t bytes)
{
    return job([text = mixedText(bytes), out = std::u16string(bytes + 1, u'\0')]() mutable {
        int32_t units = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &units, text.c_str(),
                             static_cast<int32_t>(strlen(text.c_str())), 0xFFFD, nullptr, &status);
        return std::u16string_view(out.data(), static_cast<size_t>(units));
    });
}

std::unique_ptr<Job> keltoOut(size_t bytes)
{
    return job([text = wide(mixedText(bytes)), out = std::string(bytes + 1, '\0')]() mutable {
        size_t length = out.size();
        KTUCS2ToUTF8(text.c_str(), &length, out.data());
        return std::string_view(out.data(), length);
    });
}

/** The same as a program would write it that knows the user's character set by name only. */
std::unique_ptr<Job> keltoOutByName(size_t bytes)
{
    return job([text = wide(mixedText(bytes)), out = std::string(bytes + 1, '\0')]() mutable {
        size_t length = out.size();
        KTUCS2ToMultiByte("UTF-8", 0, 0, text.c_str(), &length, out.data());
        return std::string_view(out.data(), length);
    });
}

std::unique_ptr<Job> icuOut(size_t bytes)
{
    return job([text = wide(mixedText(bytes)), out = std::string(bytes + 1, '\0')]() mutable {
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, text.c_str(), u_strlen(text.c_str()),
                           0xFFFD, nullptr, &status);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
}

/** iconv from one character set to another, opened and closed by each call, as Kelto's conversions are. */
template <class Out>
std::unique_ptr<Job> iconvJob(const char *to, const char *from, std::string source, size_t capacity)
{
    return job([=, out = Out(capacity, 0)]() mutable {
        iconv_t converter = iconv_open(to, from);
        char *in = source.data();
        size_t inLeft = source.size();
        char *end = reinterpret_cast<char *>(out.data());
        size_t outLeft = capacity * sizeof out[0];
        iconv(converter, &in, &inLeft, &end, &outLeft);
        iconv_close(converter);
        return std::basic_string_view<typename Out::value_type>(out.data(), capacity - outLeft / sizeof out[0]);
    });
}

std::unique_ptr<Job> iconvIn(size_t bytes)
{
    return iconvJob<std::u16string>("UTF-16LE", "UTF-8", mixedText(bytes), bytes);
}

std::unique_ptr<Job> iconvOut(size_t bytes)
{
    const std::u16string text = wide(mixedText(bytes));
    return iconvJob<std::string>("UTF-8", "UTF-16LE",
                                 std::string(reinterpret_cast<const char *>(text.data()), 2 * text.size()), bytes);
}

std::unique_ptr<Job> keltoShiftJis(size_t bytes)
{
    return job([text = shiftJisText(bytes), out = std::string(3 * bytes + 1, '\0')]() mutable {
        size_t length = out.size();
        KTMultiByteToUTF8("shift_jis", 0, 0, text.c_str(), &length, out.data());
        return std::string_view(out.data(), length);
    });
}

/** The same way by hand: a converter into a temporary text, then to UTF-8. */
std::unique_ptr<Job> icuShiftJis(size_t bytes)
{
    return job([text = shiftJisText(bytes), out = std::string(3 * bytes + 1, '\0')]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        UConverter *converter = ucnv_open("shift_jis", &status);
        const size_t sourceBytes = strlen(text.c_str());
        const auto units = std::make_unique<UChar[]>(sourceBytes + 1);
        const int32_t count = ucnv_toUChars(converter, units.get(), static_cast<int32_t>(sourceBytes + 1), text.c_str(),
                                            static_cast<int32_t>(sourceBytes), &status);
        ucnv_close(converter);
        int32_t length = 0;
        u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, units.get(), count, 0xFFFD, nullptr,
                           &status);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
}

std::unique_ptr<Job> iconvShiftJis(size_t bytes)
{
    return iconvJob<std::string>("UTF-8", "SHIFT_JIS", shiftJisText(bytes), 3 * bytes);
}

constexpr size_t smallBytes = 42;

/** Both sizes of a work. */
class RegisterSizes
{
public:
    RegisterSizes(const std::string &work, const char *name, std::unique_ptr<Job> (*setUp)(size_t bytes))
        : m_small(work + "/42B", name, [setUp] { return setUp(smallBytes); }),
          m_large(work + "/64KiB", name, [setUp] { return setUp(largeBytes); })
    {
    }

private:
    Register m_small;
    Register m_large;
};

const RegisterSizes contenders[] = {
    {"W7/in", kelto, keltoIn},
    {"W7/in", "ICU bare", icuIn},
    {"W7/in", "iconv", iconvIn},
    {"W7/out", kelto, keltoOut},
    {"W7/out", "Kelto, KTUCS2ToMultiByte", keltoOutByName},
    {"W7/out", "ICU bare", icuOut},
    {"W7/out", "iconv", iconvOut},
    {"W8", kelto, keltoShiftJis},
    {"W8", "ICU", icuShiftJis},
    {"W8", "iconv", iconvShiftJis},
};

} // namespace
} // namespace bench
