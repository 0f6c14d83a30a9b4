// A program with an open survey, a survey server, and a driver that goes through a wizard as a
// person does: for each page that comes up, what is done on it. The pages are the real ones, shown
// one after the other by the wizard's own loop.
#pragma once

#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <deque>
#include <functional>

#include "document/SurveyDocument.h"
#include "support/Accessible.h"
#include "support/FakeViews.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "support/SurveyServer.h"
#include "web/ServerList.h"
#include "web/WebServices.h"

namespace pollarix::test {

class WebWizard : public testing::Test {
  protected:
    using Step = std::function<void(QDialog& page)>;
    static constexpr const char* Password = "Sesame-93";

    WebWizard() {
        path = program.BlankSurvey("survey.plxs");
        SurveyDocument(program.state, views).DoOpen(path, true, 1);
        views.selected = QString(RootKey);
    }

    // The next page must be this one. The step is taken when the page's work, if it has any, has
    // ended, or as soon as it has told the message.
    void On(const char* page, Step step, const QString& message = {}) {
        steps.push_back({page, message, std::move(step)});
    }
    void Press(const char* page, const char* button = "cmdNext") {
        On(page, [button](QDialog& shown) { Click(shown, button); });
    }
    // Fails the test when the wizard asks for another page than the next one, or ends before all
    // steps are taken.
    void Run(const std::function<void()>& wizard) {
        const QDeadlineTimer deadline(60000);
        QTimer watch;
        watch.setSingleShot(true); // started anew before each look, which may show a window itself
        QObject::connect(&watch, &QTimer::timeout, [&] {
            watch.start(0);
            Look(deadline.hasExpired());
        });
        watch.start(0);
        wizard();
        EXPECT_TRUE(steps.empty()) << "not reached: " << steps.front().page;
        steps.clear();
    }

    static void Click(QDialog& page, const char* button) {
        QTest::mouseClick(page.findChild<QPushButton*>(button), Qt::LeftButton);
    }
    static void Type(QDialog& page, const char* box, const QString& text) {
        page.findChild<QLineEdit*>(box)->clear();
        QTest::keyClicks(page.findChild<QLineEdit*>(box), text);
    }
    // A run's page: its messages, the bar that has moved on with each, and whether Next is offered.
    static void ExpectTold(QDialog& page, const QStringList& messages, int max, bool done) {
        EXPECT_EQ(Messages(page), messages);
        const auto* bar = page.findChild<QProgressBar*>("ProgressBar1");
        EXPECT_EQ(bar->maximum(), max);
        EXPECT_EQ(bar->value(), std::min<qsizetype>(messages.size(), max));
        EXPECT_EQ(page.findChild<QPushButton*>("cmdNext")->isEnabled(), done);
        EXPECT_EQ(page.focusWidget()->objectName() == "cmdNext", done);
    }
    static QStringList Messages(QDialog& page) {
        auto* box = page.findChild<QPlainTextEdit*>("txtMessages");
        return box->toPlainText().split('\n', Qt::SkipEmptyParts);
    }

    TestState program;
    QueuedDialogs& dialogs = program.dialogs;
    FakeViews views;
    QString path;
    SurveyServer server;
    struct : Internet {
        bool hasSessions = true;
        std::optional<InternetSession> InternetOpen() override {
            return hasSessions ? Internet::InternetOpen() : std::nullopt;
        }
    } internet;
    wininet net{internet};
    modWebServer client{net, program.state.directories};
    WebServices services{program.state, views, net, client};

  private:
    struct Planned {
        const char* page;
        QString message;
        Step step;
    };

    void Look(bool tooLate) {
        auto* page = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!page || !page->isVisible() || page == stepping) // its step waits for the server
            return;
        if (tooLate || steps.empty() || page->objectName() != steps.front().page) {
            ADD_FAILURE() << "on " << page->objectName().toStdString();
            steps.clear();
            page->reject();
            return;
        }
        // The work of a page starts after half a second; here it need not wait.
        auto* timer = page->findChild<QTimer*>("Timer1");
        if (timer && timer->interval() > 0) {
            EXPECT_EQ(timer->interval(), 500);
            timer->start(0);
            return;
        }
        const QString& message = steps.front().message;
        if (message.isEmpty() ? timer && !HasEnded(*page) : !Messages(*page).contains(message))
            return;
        CheckAccessible(*page);
        const Step step = std::move(steps.front().step);
        steps.pop_front();
        QDialog* const outer = std::exchange(stepping, page);
        step(*page);
        stepping = outer;
    }
    static bool HasEnded(QDialog& page) {
        if (page.findChild<QTimer*>("Timer1")->isActive() || QGuiApplication::overrideCursor())
            return false;
        const QStringList told = page.findChild<QPlainTextEdit*>("txtMessages")
                                     ? Messages(page)
                                     : QStringList("Success.");
        const QString last = told.isEmpty() ? QString() : told.last();
        return last.endsWith("Failed.") || last == "Success." || last == "Finished." ||
               last.contains("did not accept");
    }

    std::deque<Planned> steps;
    QDialog* stepping = nullptr;
};

} // namespace pollarix::test
