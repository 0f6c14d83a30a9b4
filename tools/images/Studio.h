// The program in front of a camera: its main window with a home directory of its own, driven by
// clicks and keys. What goes wrong on the way (a control that is not there, a failure, a box that
// nobody expected) is thrown as std::runtime_error, at the latest when the picture is taken.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <QTemporaryDir>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

#include "document/ApplicationState.h"
#include "images/StudioDialogs.h"
#include "shell/frmMain.h"

namespace pollarix {

namespace images {

// Of main windows, frame included.
inline constexpr QSize Small(1024, 768);
inline constexpr QSize Large(1920, 1080);

// A modal window to wait for, and what to do in it: take its picture, click its buttons.
struct Step {
    QString window; // objectName or, for a box without one, class name
    std::function<void(QWidget& dialog)> act;
};

class Studio {
  public:
    Studio();
    ~Studio();
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;

    // Starts the program: with a new survey, or with the sample.
    void Start(const QSize& size);
    void StartWithSample(const QSize& size);

    // The main window as it is now, any other window, or a panel of the main window alone.
    QImage Picture();
    QImage PictureOf(QWidget& window);
    QImage PictureOfPart(const QString& panel);
    // Starts the program as well.
    QImage PictureOfSplash();

    // Does what opens modal windows, and each step as soon as its window shows. Windows that are
    // still open after the last step are closed.
    void Walk(const std::function<void()>& open, std::vector<Step> steps);
    // The picture of one modal window.
    QImage PictureOfDialog(const std::function<void()>& open, const QString& window,
                           const std::function<void(QWidget& dialog)>& prepare = {});

    // As a user does it. Controls go by their objectName, in the main window or in the one given.
    void Menu(const QString& name);
    void Click(const QString& name, QWidget* in = nullptr);
    void Type(const QString& name, const QString& text, QWidget* in = nullptr);
    // The check box, radio button or button with this text.
    void ClickText(const QString& text, QWidget* in);
    void Choose(const QString& combo, const QString& entry, QWidget* in = nullptr);
    // The first node, row or entry whose text contains this.
    void SelectNode(const QString& tree, const QString& text);
    void SelectRow(const QString& grid, const QString& text);
    void SelectCell(const QString& grid, int row, int col, QWidget* in = nullptr);
    void SelectEntry(const QString& list, const QString& text, QWidget* in = nullptr);
    // Until the window has nothing left to do.
    void Settle();

    template <typename Control> Control& Find(const QString& name, QWidget* in = nullptr) {
        auto* control =
            (in ? in : static_cast<QWidget*>(window_.get()))->template findChild<Control*>(name);
        if (!control)
            Missing(name);
        return *control;
    }
    ApplicationState& State() { return *state_; }
    StudioDialogs& Boxes() { return dialogs_; }
    frmMain& MainWindow() { return *window_; }

  private:
    [[noreturn]] static void Missing(const QString& what);
    void Show(const QString& survey, const QSize& size, std::vector<Step> splash = {});
    struct WalkState;
    void Await(const std::shared_ptr<WalkState>& walk, std::size_t next, int waited);
    void NoteFailure(const QString& text);
    void ThrowIfFailed() const;

    QTemporaryDir home_;
    QString startDirectory_;
    StudioDialogs dialogs_;
    std::unique_ptr<Settings> settings_;
    std::unique_ptr<ApplicationState> state_;
    std::unique_ptr<frmMain> window_;
    QString failure_;
};

} // namespace images
} // namespace pollarix
