#include "analysis/PrintWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

#include "support/QueuedDialogs.h"

namespace pollarix::test {
namespace {

class PrintWindowTest : public testing::Test {
  protected:
    PrintWindowTest() {
        window_.setStyleSheet("background: #c02040");
        window_.resize(300, 200);
        window_.show();
        QApplication::clipboard()->setText("the user's");
    }
    QSize Pictured() { return QApplication::clipboard()->image().size(); }

    QTemporaryDir directory_;
    QueuedDialogs dialogs_;
    QLabel window_;
    PrintWindow print_{dialogs_, window_};
};

TEST_F(PrintWindowTest, PicturesTheWindowOnClipboardAndPage) {
    print_.DoPrint(); // cancelled
    EXPECT_EQ(QApplication::clipboard()->text(), "the user's");

    QString path = directory_.filePath("missing/page.pdf");
    dialogs_.onPrinter = [&](QPrinter& printer) { printer.setOutputFileName(path); };
    print_.DoPrint(); // a printer that can't print is passed over
    EXPECT_EQ(Pictured(), QSize(300, 200));

    path = directory_.filePath("page.pdf");
    print_.DoPrint();
    EXPECT_EQ(QApplication::clipboard()->image().pixelColor(150, 100), QColor("#c02040"));
    QFile page(path);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_TRUE(page.readAll().startsWith("%PDF"));
    EXPECT_TRUE(dialogs_.TakeTexts().isEmpty());
}

TEST_F(PrintWindowTest, PageSetupLastsAndStartsFromTheDefaultsEachTime) {
    const QPageSize usual = print_.Printer().pageLayout().pageSize();
    PageMargins margins;
    EXPECT_FALSE(print_.ShowPageSetupDialog(margins)); // cancelled

    dialogs_.onPageSetup = [](QPrinter& printer) {
        printer.setPageSize(QPageSize(QPageSize::A5));
        printer.setPageOrientation(QPageLayout::Landscape);
        printer.setPageMargins(QMarginsF(1, 0.5, 0.25, 2), QPageLayout::Inch);
    };
    EXPECT_TRUE(print_.ShowPageSetupDialog(margins));
    EXPECT_EQ(print_.Printer().pageLayout().pageSize().id(), QPageSize::A5);
    EXPECT_EQ(print_.Printer().pageLayout().orientation(), QPageLayout::Landscape);
    EXPECT_EQ(margins.top, 500);
    EXPECT_EQ(margins.bottom, 2000);

    dialogs_.onPageSetup = [&](QPrinter& printer) {
        EXPECT_EQ(printer.pageLayout().pageSize(), usual);
    };
    print_.DoPageSetup();
}

} // namespace
} // namespace pollarix::test
