// When respondents answered, as the files that are written tell it. They come by date, so what a
// day is called is worked out once a day.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QString>

namespace pollarix {

class RespondentDates {
  public:
    // Of a date as it is stored, in UTF-8. Both throw TypeMismatch for what is none.
    const QString& General(QByteArrayView stored); // GeneralDate in the user's locale
    QByteArrayView Iso(QByteArrayView stored);     // "2024-03-05 09:07:00"

  private:
    QDate day_;       // of dayText_
    QString dayText_; // the date alone
    QString general_;
    QByteArray iso_;
};

} // namespace pollarix
