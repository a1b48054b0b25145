// One number, the right sentence: from a number to the message, and to the text. The catalog is Polish, the number 22,
// which takes the second of three forms.

#include "kelto.h"
#include "workload.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <libintl.h>

namespace bench
{
namespace
{

constexpr int number = 22;
constexpr size_t room = 200;
constexpr std::string_view selected = "Skopiowano %d";

/** The Polish catalog. */
class PolishCatalog
{
public:
    PolishCatalog()
    {
        require(KTLoadMessages(catalog("plural.xlf").data(), &m_table) == 0, "a message file cannot be loaded");
    }
    PolishCatalog(PolishCatalog &&other) noexcept : m_table(std::exchange(other.m_table, nullptr)) {}
    ~PolishCatalog() { KTFreeMessages(m_table); }
    MessageTable *table() const { return m_table; }

private:
    MessageTable *m_table = nullptr;
};

// What is compared is the part of the message in which gettext's is the same.
const Register keltoL1("L1", kelto, [] {
    return job([polish = PolishCatalog()] {
        const KTArgument arguments[] = {KT_INT(number), KT_UTF8("Faktury")};
        unsigned int id = 12;
        char *message = nullptr;
        KTSelectMessage(polish.table(), &id, nullptr, arguments, 2, &message);
        return std::string_view(message, message != nullptr && id == 104 ? selected.size() : 0);
    });
});

const Register keltoL2("L2", kelto, [] {
    KTPreparedFormat *prepared = nullptr;
    require(KTPrepareMessage(PolishCatalog().table(), 12, nullptr, nullptr, &prepared) == 0,
            "a message cannot be prepared");
    return job([owner = std::shared_ptr<KTPreparedFormat>(prepared, KTFreePrepared),
                out = std::array<char, room>()]() mutable {
        keep(owner.get());
        const KTArgument arguments[] = {KT_INT(number), KT_UTF8("Faktury")};
        size_t bytes = out.size();
        KTFormatPreparedUTF8(owner.get(), 0, nullptr, &bytes, out.data(), arguments, 2);
        return std::string_view(out.data(), bytes);
    });
});

const Register keltoL2First("L2/first", kelto, [] {
    return job([polish = PolishCatalog()] {
        KTPreparedFormat *prepared = nullptr;
        KTPrepareMessage(polish.table(), 12, nullptr, nullptr, &prepared);
        KTFreePrepared(prepared);
        return std::string_view(prepared != nullptr ? "prepared" : "");
    });
});

const Register keltoL3("L3", kelto, [] {
    return job([language = std::string("pl")] {
        keep(language.data());
        const int category = KTPluralCategory(language.c_str(), false, KT_INT(number), 0);
        return std::string_view("few", category == KT_VARIANT_FEW ? 3 : 0);
    });
});

// In each of these 22 takes the same form.
const Register keltoL3First("L3/first", kelto, [] {
    return job([languages = std::array{"pl", "ru", "uk", "be", "hr", "sr", "bs"}, at = size_t{0}]() mutable {
        at = (at + 1) % languages.size();
        const int category = KTPluralCategory(languages[at], false, KT_INT(number), 0);
        return std::string_view("few", category == KT_VARIANT_FEW ? 3 : 0);
    });
});

#ifdef KELTO_BENCH_GETTEXT

constexpr const char *domain = "kelto-plural";
constexpr const char *one = "%d file copied to %s", *many = "%d files copied to %s";

void openDomain()
{
    setenv("LANGUAGE", "de", 1); // the folder; what counts is the rule in the file
    bindtextdomain(domain, KELTO_BENCH_CATALOGS);
    require(dngettext(domain, one, many, number) != many, "gettext does not find its catalog");
}

const Register gettextL1("L1", "ngettext", [] {
    openDomain();
    return job([] { return std::string_view(dngettext(domain, one, many, number), selected.size()); });
});

const Register gettextL2("L2", "ngettext, snprintf", [] {
    openDomain();
    return job([out = std::array<char, room>()]() mutable {
        const int length = snprintf(out.data(), out.size(), dngettext(domain, one, many, number), number, "Faktury");
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

#endif

} // namespace
} // namespace bench
