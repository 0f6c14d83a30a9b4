#include "platform/base/Formats.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

#include "platform/base/Failure.h"

namespace pollarix {

namespace {

// Replaces in a date or time format what matches, but not in its quoted parts.
template <typename Replace> QString OutsideQuotes(const QString& format, Replace replace) {
    QStringList parts = format.split('\'');
    for (qsizetype i = 0; i < parts.size(); i += 2)
        parts[i] = replace(parts[i]);
    return parts.join('\'');
}

QString LongTimeFormat(const QLocale& locale) {
    static const QRegularExpression zone(R"([,\s]*(\(t+\)|\[t+\]|t+)\s*)");
    const QString format = OutsideQuotes(locale.timeFormat(QLocale::LongFormat), [](QString plain) {
        plain.replace(zone, " ");
        // The part of the day, which Qt would write as the letter it is.
        return plain.replace('B', "AP");
    });
    return format.trimmed();
}

QString ShortDateFormat(const QLocale& locale) {
    static const QRegularExpression year("y+");
    return OutsideQuotes(locale.dateFormat(QLocale::ShortFormat),
                         [](QString plain) { return plain.replace(year, "yyyy"); });
}

// Worked out once for the locale used last: a report writes very many dates.
struct DateFormats {
    explicit DateFormats(const QLocale& of)
        : locale(of), shortDate(ShortDateFormat(of)), longTime(LongTimeFormat(of)) {}

    QLocale locale;
    QString shortDate;
    QString longTime;
};

const DateFormats& FormatsOf(const QLocale& locale) {
    static std::optional<DateFormats> last;
    if (!last || last->locale != locale)
        last.emplace(locale);
    return *last;
}

QDateTime DateInAnyForm(const QString& stored) {
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        R"((\d{4})-(\d\d)-(\d\d)(?:[ T](\d\d):(\d\d):(\d\d)(?:\.(\d+))?)?)"));
    const QRegularExpressionMatch match = form.match(stored);
    const auto number = [&](int group) { return match.capturedView(group).toInt(); };
    const QDate date(number(1), number(2), number(3));
    const QString thousandths = match.captured(7).leftJustified(3, '0', true);
    const QTime time(number(4), number(5), number(6), thousandths.toInt());
    if (!match.hasMatch() || !date.isValid() || !time.isValid())
        throw Failure(failure::TypeMismatch, QString("\"%1\" is not a date").arg(stored.left(80)));
    return QDateTime(date, time, Qt::UTC);
}

} // namespace

QDateTime StoredDate(QByteArrayView stored) {
    // "YYYY-MM-DD hh:mm:ss.fff", as a survey file itself writes it.
    constexpr std::string_view usual = "0000-00-00 00:00:00.000";
    const auto isUsual = [](char form, char byte) {
        return form == '0' ? byte >= '0' && byte <= '9' : byte == form;
    };
    if (std::equal(usual.begin(), usual.end(), stored.begin(), stored.end(), isUsual)) {
        const auto number = [&](int begin, int digits) {
            int value = 0;
            for (int i = begin; i < begin + digits; ++i)
                value = value * 10 + (stored[i] - '0');
            return value;
        };
        const QDate date(number(0, 4), number(5, 2), number(8, 2));
        const QTime time(number(11, 2), number(14, 2), number(17, 2), number(20, 3));
        if (date.isValid() && time.isValid())
            return QDateTime(date, time, Qt::UTC);
    }
    return DateInAnyForm(QString::fromUtf8(stored));
}

QString LongTime(QTime time, const QLocale& locale) {
    return locale.toString(time, FormatsOf(locale).longTime);
}

QString LongDateAndTime(const QDateTime& when, const QLocale& locale) {
    return locale.toString(when.date(), QLocale::LongFormat) + " - " +
           LongTime(when.time(), locale);
}

QString GeneralDate(const QDateTime& when, const QLocale& locale) {
    const QString date = locale.toString(when.date(), FormatsOf(locale).shortDate);
    const QTime time = when.time();
    if (time.hour() == 0 && time.minute() == 0 && time.second() == 0)
        return date;
    return date + ' ' + LongTime(time, locale);
}

QString GeneralNumber(double value, const QLocale& locale) {
    QLocale plain(locale);
    plain.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    return plain.toString(value == 0 ? 0.0 : value, 'g', 15);
}

} // namespace pollarix
