#include "analysis/PrintWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QPainter>
#include <QPixmap>
#include <QPrinterInfo>
#include <QWidget>

#include <cmath>
#include <exception>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

constexpr double PixelsPerInch = 96;

// The corner is that of the area the printer can print on, which for most is a little inside the
// paper's: nothing of the picture is lost.
void PrintAtCorner(QPrinter& printer, const QPixmap& picture) {
    QPageLayout layout = printer.pageLayout();
    layout.setMargins(layout.minimumMargins());
    printer.setPageLayout(layout);
    QPainter painter;
    if (!painter.begin(&printer))
        return;
    painter.setRenderHint(QPainter::LosslessImageRendering); // else texts get smudged edges
    const QSizeF inches = picture.deviceIndependentSize() / PixelsPerInch;
    painter.drawPixmap(QRectF(0, 0, inches.width() * printer.logicalDpiX(),
                              inches.height() * printer.logicalDpiY()),
                       picture, QRectF(picture.rect()));
}

} // namespace

QPrinter& PrintWindow::Printer() {
    if (!printer_)
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    return *printer_;
}

void PrintWindow::DoPageSetup() {
    PageMargins Margins;
    ShowPageSetupDialog(Margins);
}

bool PrintWindow::ShowPageSetupDialog(PageMargins& Margins) {
    QPrinter settings(QPrinterInfo::defaultPrinter(), QPrinter::HighResolution);
    if (!dialogs_.ShowPageSetup(settings))
        return false;
    // A printer that is not among the system's leaves the program's where it was, which still gets
    // the paper.
    if (QPrinterInfo::availablePrinterNames().contains(settings.printerName()))
        Printer().setPrinterName(settings.printerName());
    Printer().setPageSize(settings.pageLayout().pageSize());
    Printer().setPaperSource(settings.paperSource());
    Printer().setPageOrientation(settings.pageLayout().orientation());

    const QMarginsF inches = settings.pageLayout().margins(QPageLayout::Inch);
    const auto thousandths = [](double inch) {
        return static_cast<std::int32_t>(std::lround(inch * 1000));
    };
    Margins = {thousandths(inches.left()), thousandths(inches.top()), thousandths(inches.right()),
               thousandths(inches.bottom())};
    return true;
}

void PrintWindow::DoPrint() {
    try {
        dialogs_.ShowPrinter(Printer());
    } catch (const Failure& failure) {
        if (failure.Number() == failure::DialogCancelled)
            return;
        // Any other failure is passed over: the picture gets at least to the clipboard.
    }
    try {
        QClipboard& clipboard = *QApplication::clipboard();
        clipboard.clear();
        QWidget* const active = QApplication::activeWindow();
        const QPixmap picture = (active ? *active : window_).grab();
        clipboard.setPixmap(picture);
        DoPaintEvents();
        if (!picture.isNull())
            PrintAtCorner(Printer(), picture);
    } catch (const std::exception&) {
        // Printing ends without a word, at whichever step failed.
    }
}

} // namespace pollarix
