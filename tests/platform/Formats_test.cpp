#include "platform/base/Formats.h"

#include <gtest/gtest.h>

#include "support/NumberOf.h"

using namespace pollarix;

namespace {

// Locales write narrow and unbreakable blanks; here any blank will do.
std::string Plain(const QString& text) {
    return text.simplified().toStdString();
}

} // namespace

TEST(Formats, StoredDatesAreReadInEveryFormTheyAreWrittenIn) {
    const std::pair<const char*, const char*> read[] = {
        {"2026-11-22 20:15:03", "2026-11-22 20:15:03.000"},
        {"2026-11-22 20:15:03.9996", "2026-11-22 20:15:03.999"},
        {"2026-03-29 02:30:00", "2026-03-29 02:30:00.000"}, // no such time in some zones
        {"2024-02-29", "2024-02-29 00:00:00.000"}};
    for (const auto& [stored, expected] : read)
        EXPECT_EQ(StoredDate(stored).toString("yyyy-MM-dd HH:mm:ss.zzz"), expected) << stored;
    for (const char* stored : {"", "2026-02-29", "2026-11-22 24:00:00", "2026-11-22 20:15"})
        EXPECT_EQ(test::NumberOf([&] { StoredDate(stored); }), failure::TypeMismatch) << stored;
}

TEST(Formats, DatesAreWrittenAsTheLocaleDoesWithoutZoneOrFraction) {
    for (const auto& [locale, stored, longOne, general] :
         {std::tuple("C", "2026-11-22 20:15:03.999", "Sunday, 22 November 2026 - 20:15:03",
                     "22 Nov 2026 20:15:03"),
          {"C", "2026-11-22 00:00:00.5", "Sunday, 22 November 2026 - 00:00:00", "22 Nov 2026"},
          {"en_US", "2026-11-22 20:15:03", "Sunday, November 22, 2026 - 8:15:03 PM",
           "11/22/2026 8:15:03 PM"}}) {
        const QDateTime when = StoredDate(stored);
        EXPECT_EQ(Plain(LongDateAndTime(when, QLocale(locale))), longOne);
        EXPECT_EQ(Plain(GeneralDate(when, QLocale(locale))), general);
    }
    // No locale's zone, nor brackets or commas around it, may be left over.
    const QDateTime when(QDate(2026, 11, 22), QTime(20, 15, 3), Qt::UTC);
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        const QString general = GeneralDate(when, locale);
        EXPECT_FALSE(general.contains("UTC") || general.contains('(') || general.contains('[') ||
                     general.endsWith(',') || general.endsWith(' '))
            << locale.name().toStdString() << ": " << general.toStdString();
    }
}

TEST(Formats, NumbersHaveTheLocalesSeparatorAndNoGroups) {
    EXPECT_EQ(GeneralNumber(-0.0, QLocale("C")), "0");
    EXPECT_EQ(GeneralNumber(1234567.5, QLocale("de_DE")), "1234567,5");
}
