// Page setup and printing: what goes to paper is a picture of the active window, by way of the
// clipboard. The reports go to paper by way of their files, not here.
#pragma once

#include <QPrinter>

#include <cstdint>
#include <memory>

#include "platform/desktop/Dialogs.h"

class QWidget;

namespace pollarix {

// What the page setup dialog was left with, in thousandths of an inch.
struct PageMargins {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

class PrintWindow {
  public:
    // The window is printed when no window of the program is active.
    PrintWindow(Dialogs& dialogs, QWidget& window) : dialogs_(dialogs), window_(window) {}

    void mnuFilePageSetup_Click() { DoPageSetup(); }
    void mnuFilePrint_Click() { DoPrint(); }

    void DoPageSetup();
    // Shows the dialog, which always starts from the default printer's values. On OK the program's
    // printer takes its paper size, paper bin and orientation until the program ends, and `Margins`
    // the margins; false when cancelled.
    bool ShowPageSetupDialog(PageMargins& Margins);
    // Prints the picture; reports nothing, whatever fails.
    void DoPrint();

    // The program's printer, made when it is first asked for: looking for printers takes a while.
    QPrinter& Printer();

  private:
    Dialogs& dialogs_;
    QWidget& window_;
    std::unique_ptr<QPrinter> printer_;
};

} // namespace pollarix
