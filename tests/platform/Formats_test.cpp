#include "platform/base/Formats.h"

#include <gtest/gtest.h>

#include "platform/base/Failure.h"

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
    for (const char* stored :
         {"", "2026-02-29", "2026-11-22 24:00:00", "2026-11-22 20:15", "2026-11-22 20:15:03."}) {
        try {
            StoredDate(stored);
            ADD_FAILURE() << stored;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), failure::TypeMismatch);
            EXPECT_TRUE(failure.Description().contains(stored));
        }
    }
}

TEST(Formats, DatesAreWrittenAsTheLocaleDoesWithoutZoneOrFraction) {
    struct Case {
        const char* locale;
        const char* stored;
        const char* longOne;
        const char* general;
    };
    const Case cases[] = {
        {"C", "2026-11-22 20:15:03.999", "Sunday, 22 November 2026 - 20:15:03",
         "22 Nov 2026 20:15:03"},
        {"C", "2026-11-22 00:00:00.5", "Sunday, 22 November 2026 - 00:00:00", "22 Nov 2026"},
        {"en_US", "2026-11-22 20:15:03", "Sunday, November 22, 2026 - 8:15:03 PM",
         "11/22/2026 8:15:03 PM"},
        {"zh_TW", "2026-11-22 20:15:03", "2026年11月22日 星期日 - 下午8:15:03",
         "2026/11/22 下午8:15:03"},
    };
    for (const Case& one : cases) {
        const QDateTime when = StoredDate(one.stored);
        EXPECT_EQ(Plain(LongDateAndTime(when, QLocale(one.locale))), one.longOne);
        EXPECT_EQ(Plain(GeneralDate(when, QLocale(one.locale))), one.general);
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
