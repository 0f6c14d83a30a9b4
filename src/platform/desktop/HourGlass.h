// The wait cursor over long work. Not for boxes and dialogs: while one shows, the work waits for
// the user and the cursor is the usual one (HourGlass::Pause).
#pragma once

#include <QCursor>
#include <QGuiApplication>
#include <QList>

namespace pollarix {

class HourGlass {
  public:
    HourGlass() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~HourGlass() { QGuiApplication::restoreOverrideCursor(); }
    HourGlass(const HourGlass&) = delete;
    HourGlass& operator=(const HourGlass&) = delete;

    // Takes every hour glass away for the time of a scope and puts them back after.
    class Pause {
      public:
        Pause() {
            while (const QCursor* cursor = QGuiApplication::overrideCursor()) {
                cursors_.append(*cursor);
                QGuiApplication::restoreOverrideCursor();
            }
        }
        ~Pause() {
            while (!cursors_.isEmpty())
                QGuiApplication::setOverrideCursor(cursors_.takeLast());
        }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

      private:
        QList<QCursor> cursors_;
    };
};

} // namespace pollarix
