#include "analysis/RespondentDates.h"

#include "platform/base/Formats.h"

namespace pollarix {

const QString& RespondentDates::General(QByteArrayView stored) {
    const QDateTime when = StoredDate(stored);
    const QTime midnight(0, 0);
    if (when.date() != day_) {
        day_ = when.date();
        dayText_ = GeneralDate(QDateTime(day_, midnight, Qt::UTC));
    }
    general_ = dayText_;
    if (when.time() >= QTime(0, 0, 1)) // the general date has no fractions
        general_ += ' ' + LongTime(when.time());
    return general_;
}

// To the second. With a blank and not a "T" between date and time, spreadsheets know it for a date.
QByteArrayView RespondentDates::Iso(QByteArrayView stored) {
    const QDateTime when = StoredDate(stored);
    const QDate day = when.date();
    const QTime time = when.time();
    iso_.resize(0); // keeps its memory
    const auto add = [this](int number, int digits, char behind) {
        for (int power = digits == 4 ? 1000 : 10; power > 0; power /= 10)
            iso_ += static_cast<char>('0' + number / power % 10);
        iso_ += behind;
    };
    add(day.year(), 4, '-');
    add(day.month(), 2, '-');
    add(day.day(), 2, ' ');
    add(time.hour(), 2, ':');
    add(time.minute(), 2, ':');
    add(time.second(), 2, ' ');
    iso_.chop(1);
    return iso_;
}

} // namespace pollarix
