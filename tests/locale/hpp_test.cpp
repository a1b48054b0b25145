// The add-on for C++: what its types become, and how long languages stay open.

#include "support/fake_zel.h"
#include "support/message_file_builder.h"

#include "kelto-locale.hpp"

#include <gtest/gtest.h>

namespace
{

TEST(LocaleHpp, EveryRungWritesInItsLanguage)
{
    FakeZel::file("h/de/store.xlf", MessageFile().unit(1, "%money[1] für %unit[2]: %and[3]").unit(2, "%own[1]").xml());
    std::error_code failure;
    kelto::catalog_options options;
    options.languages = "de";
    kelto::locale_conversions("Europe/Nowhere", failure);
    EXPECT_EQ(failure, std::errc::invalid_argument);
    EXPECT_THROW(kelto::locale_conversions(std::string("UTC\0", 4)), kelto::error);
    options.conversions = kelto::locale_conversions("Europe/Berlin", failure);
    EXPECT_FALSE(failure);
    const kelto::form_table own =
        kelto::form_table::builder().add<int>("own", [](int n) { return std::to_string(n + 1); }).build();
    options.table = &own;
    kelto::catalog store = kelto::catalog::find("store", "h", options, failure);
    options.conversions = {}; // the catalog keeps them
    const std::vector<std::string> names = {"Äpfel", "Birnen\nQuitten"};
    const auto format = [&](int id) {
        return store.format(id, KELTO_DEFAULT("%money[1] for %unit[2]: %or[3]"), kelto::money{"1234.5", "EUR"},
                            kelto::measure{1.5, "kilogram"}, kelto::items(names));
    };
    EXPECT_EQ(format(1), "1.234,50\u00A0€ für 1,5 kg: Äpfel und Birnen Quitten");
    EXPECT_EQ(format(3), "€1,234.50 for 1.5 kg: Äpfel or Birnen Quitten");
    EXPECT_EQ(store.format(2, 41), "42");
    EXPECT_EQ(store.format(4, KELTO_DEFAULT("%!number[1], %.0percent[2], %*unumber[3]"), 12345L, 8.0, 6, 1234U),
              "12,345, 8%,  1,234");
    EXPECT_EQ(store.format(4, kelto::money{"1", "EUR"}, kelto::items({"a", "b"})), "[store 4: 1, EUR, a\nb\n]");
}

} // namespace
