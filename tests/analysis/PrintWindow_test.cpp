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

// Where the one picture of a printed file stands on its page, in points from the lower left corner:
// what the drawing instructions before it come to.
QRectF PictureOn(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QByteArray drawing;
    for (qsizetype at = 0; !drawing.contains(" Do\n") && at >= 0;) {
        at = bytes.indexOf("\nstream\n", at + 1);
        drawing = qUncompress(QByteArray("\0\1\0\0", 4) + bytes.mid(at + 8));
    }
    QTransform place;
    for (const QByteArray& line : drawing.left(drawing.indexOf(" Do\n")).split('\n')) {
        const QByteArrayList n = line.split(' ');
        if (n.value(6) == "cm")
            place = QTransform(n[0].toDouble(), n[1].toDouble(), n[2].toDouble(), n[3].toDouble(),
                               n[4].toDouble(), n[5].toDouble()) *
                    place;
    }
    return place.mapRect(QRectF(0, 0, 1, 1));
}

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

    // At the page's corner, whatever margins were chosen; 96 pixels are one inch.
    dialogs_.onPrinter = [&](QPrinter& printer) {
        printer.setOutputFileName(path);
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setPageMargins(QMarginsF(2, 1, 2, 1), QPageLayout::Inch);
    };
    path = directory_.filePath("page.pdf");
    print_.DoPrint();
    EXPECT_EQ(QApplication::clipboard()->image().pixelColor(150, 100), QColor("#c02040"));
    EXPECT_EQ(PictureOn(path), QRectF(0, 842 - 150, 225, 150));
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
