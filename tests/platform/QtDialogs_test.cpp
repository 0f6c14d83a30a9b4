#include "platform/desktop/QtDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

#include <tuple>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/desktop/HourGlass.h"
#include "platform/files/Files.h"
#include "support/NumberOf.h"

using namespace pollarix;
using pollarix::test::NumberOf;

namespace {

// Runs an action on the dialog that shows next.
template <typename Dialog, typename Action> void OnNext(Action action) {
    QTimer::singleShot(0, qApp, [action] {
        auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        action(dialog);
    });
}

// Types a name into a file dialog and confirms it.
void Type(QDialog* shown, const QString& name, int filter = -1) {
    auto* const dialog = qobject_cast<QFileDialog*>(shown);
    ASSERT_TRUE(dialog);
    if (filter >= 0)
        dialog->selectNameFilter(dialog->nameFilters().at(filter));
    auto* const edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    edit->setFocus(); // else a file that is selected stays so
    edit->setText(name);
    QTest::keyClick(edit, Qt::Key_Return);
    if (dialog->isVisible()) {
        ADD_FAILURE() << "the dialog does not take " << name.toStdString();
        dialog->reject();
    }
}

void TypeNext(const QString& name, int filter = 0) {
    OnNext<QFileDialog>([=](QFileDialog* dialog) { Type(dialog, name, filter); });
}

// Runs an action on each of the dialogs that show one after the other.
void OnEach(QList<std::function<void(QDialog*)>> actions, QPointer<QDialog> last = {}) {
    QTimer::singleShot(5, qApp, [=]() mutable {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog == last) {
            OnEach(actions, last);
            return;
        }
        const auto action = actions.takeFirst();
        if (!actions.isEmpty())
            OnEach(actions, dialog);
        action(dialog);
    });
}

} // namespace

TEST(QtDialogs, BoxesAnswerToEnterAndEscapeAndShowTextAsItIs) {
    QtDialogs dialogs;
    for (const auto& [buttons, key, answer] :
         {std::tuple(MsgButtons::YesNo, Qt::Key_Escape, MsgAnswer::No),
          {MsgButtons::YesNoCancel, Qt::Key_Return, MsgAnswer::Yes},
          {MsgButtons::YesNoCancel, Qt::Key_Escape, MsgAnswer::Cancel}}) {
        OnNext<QMessageBox>([key = key](QMessageBox* box) { QTest::keyClick(box, key); });
        EXPECT_EQ(dialogs.MsgBox("Save?", MsgIcon::Question, buttons), answer);
    }
    OnNext<QMessageBox>([&](QMessageBox* box) {
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->text(), "<b>Tom & Jerry</b>");
        box->button(QMessageBox::No)->click();
    });
    EXPECT_EQ(dialogs.MsgBox("<b>Tom & Jerry</b>", MsgIcon::Critical, MsgButtons::YesNoCancel),
              MsgAnswer::No);
    for (const QString& endless : {QString(100000, 'x'), QString("line\n").repeated(300)}) {
        OnNext<QMessageBox>([&](QMessageBox* box) {
            EXPECT_LT(box->sizeHint().height(), 760);
            EXPECT_LT(box->sizeHint().width(), 1024);
            EXPECT_LE(box->detailedText().size(), 20001);
            EXPECT_TRUE(endless.startsWith(box->detailedText().left(1500)));
            box->accept();
        });
        dialogs.MsgBox(endless, MsgIcon::Information, MsgButtons::Ok);
    }
}

TEST(QtDialogs, ABoxOutlivesItsWindowAndTheHourGlassRestsMeanwhile) {
    QtDialogs dialogs;
    auto* const owner = new QWidget;
    dialogs.SetDefaultParent(owner);
    const HourGlass outer;
    const HourGlass inner;
    OnNext<QMessageBox>([owner](QMessageBox*) {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        delete owner;
    });
    EXPECT_EQ(dialogs.MsgBox("?", MsgIcon::Question, MsgButtons::YesNo), MsgAnswer::No);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
}

TEST(QtDialogs, ASavedNameGetsItsSuffixBeforeOverwritingIsAskedAndCancelFails) {
    QTemporaryDir dir;
    QtDialogs dialogs;
    FileDialogRequest request{"Save", dir.filePath("first"), "", true};
    request.filter = "Pollarix (*.plxs)|*.plxs|Comma separated|*.csv|All Files (*.*)|*.*";
    for (const auto& [typed, filter, saved] : {std::tuple("Results 2.0", 0, "Results 2.0.plxs"),
                                               {"Dr. Who", 1, "Dr. Who.csv"},
                                               {"anything", 2, "anything"}}) {
        TypeNext(typed, filter);
        const FileDialogResult result = dialogs.ShowSave(request);
        EXPECT_EQ(result.fileName, dir.filePath(saved));
        EXPECT_EQ(result.filterIndex, filter);
    }

    // The dialog remembers where it was. It comes again, with the type chosen in it, for a
    // directory that is not there and for a file that is not to be lost.
    WriteWholeFile(dir.filePath("old.csv"), {});
    request.fileName.clear();
    const auto expectBox = [](const QString& text) {
        return [text](QDialog* box) {
            EXPECT_TRUE(qobject_cast<QMessageBox*>(box)->text().contains(text));
            QTest::keyClick(box, Qt::Key_Return); // "No" is the default
        };
    };
    OnEach({[](QDialog* dialog) { Type(dialog, "missing/old", 1); },
            expectBox("missing\nThis directory does not exist"),
            [](QDialog* dialog) { Type(dialog, "old"); }, expectBox("old.csv already exists"),
            [](QDialog* dialog) {
                EXPECT_EQ(dialog->findChild<QLineEdit*>("fileNameEdit")->text(), "old.csv");
                Type(dialog, "new");
            }});
    EXPECT_EQ(dialogs.ShowSave(request).fileName, dir.filePath("new.csv"));

    TypeNext("old.csv", 1);
    EXPECT_EQ(dialogs.ShowOpen(request).fileName, dir.filePath("old.csv"));
    OnNext<QFileDialog>([](QFileDialog* dialog) { dialog->reject(); });
    EXPECT_EQ(NumberOf([&] { dialogs.ShowOpen(request); }), failure::DialogCancelled);
}

class Opener : public QObject {
    Q_OBJECT

  public:
    QStringList opened;

  public slots:
    void Open(const QUrl& url) { opened << url.toString(); }
};

TEST(QtDialogs, OnlyWebPagesAreOpenedAsLinksAndFilesAsFiles) {
    Opener opener;
    const QStringList schemes{"http", "https", "file", "javascript"};
    for (const QString& scheme : schemes)
        QDesktopServices::setUrlHandler(scheme, &opener, "Open");
    QtDialogs dialogs;
    for (const char* url : {"https://example.org/a?b=c d", "file:///etc/passwd",
                            "javascript:alert(1)", "/bin/sh", "https://example.org/a\r\nreboot\n"})
        dialogs.OpenUrl(url);
    dialogs.OpenFile("/tmp/http: 100%.rtf");
    EXPECT_EQ(opener.opened,
              QStringList({"https://example.org/a?b=c d", "file:///tmp/http: 100%25.rtf"}));
    for (const QString& scheme : schemes)
        QDesktopServices::unsetUrlHandler(scheme);
}

TEST(Application, AnExceptionThatSlipsThroughAnEventIsReportedAndTheLoopGoesOn) {
    std::vector<int> shown;
    SetFailureReporter([&](const Failure& failure) { shown.push_back(failure.Number()); });
    bool wentOn = false;
    QTimer::singleShot(0, qApp, [] { throw Failure(failure::Overflow); });
    QTimer::singleShot(1, qApp, [] { throw std::runtime_error("other"); });
    QTimer::singleShot(2, qApp, [&] { wentOn = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return wentOn; }, 2000));
    SetFailureReporter({});
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], failure::Overflow);
}

#include "QtDialogs_test.moc"
