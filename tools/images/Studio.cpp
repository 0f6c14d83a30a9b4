#include "images/Studio.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QTimer>

#include <stdexcept>

#include "images/Frame.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/TreeView.h"

namespace pollarix::images {

namespace {

constexpr const char* Sample = "museum-visit.plxs";
constexpr int PollMs = 20;
constexpr int LongestWaitMs = 30000; // a wizard's page talks to servers before it moves on
constexpr int StandsAfterMs = 60;    // a window has its focus and layout then

QString NameOf(const QWidget& window) {
    return window.objectName().isEmpty() ? window.metaObject()->className() : window.objectName();
}

void ClickItem(QAbstractItemView& view, const QModelIndex& index) {
    view.scrollTo(index);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
}

} // namespace

struct Studio::WalkState {
    std::vector<Step> steps;
    bool stepsDone = steps.empty();
    bool over = false; // what opened the windows has returned
};

Studio::Studio() : startDirectory_(QDir::currentPath()) {
    dialogs_.unexpected = [this](const QString& text) { NoteFailure(text); };
    SetFailureReporter([this](const Failure& failure) { NoteFailure(failure.Description()); });
    settings_ = std::make_unique<Settings>(home_.filePath("settings"));
    state_ = std::make_unique<ApplicationState>(
        Directories{QCoreApplication::applicationDirPath(), home_.path()}, *settings_, dialogs_);
    // Surveys go by their bare names, so that no picture shows where it was taken.
    QDir::setCurrent(home_.path());
}

Studio::~Studio() {
    window_.reset();
    SetFailureReporter({});
    QDir::setCurrent(startDirectory_);
}

void Studio::Start(const QSize& size) {
    Show({}, size);
    window_->AddBlankOpenEndedQuestion();
    Settle();
}

void Studio::StartWithSample(const QSize& size) {
    const QString sample = state_->directories.InProgram(QString("samples/") + Sample);
    if (!QFile::copy(sample, home_.filePath(Sample)))
        throw std::runtime_error("the sample survey can't be copied");
    QFile::setPermissions(home_.filePath(Sample), QFile::ReadOwner | QFile::WriteOwner);
    Show(Sample, size);
    Settle();
}

void Studio::Show(const QString& survey, const QSize& size, std::vector<Step> splash) {
    window_ = std::make_unique<frmMain>(*state_);
    // Loading shows the splash, which a walk closes.
    Walk([&] { window_->Form_Load(survey); }, std::move(splash));
    window_->setWindowState(Qt::WindowNoState);
    window_->resize(size.shrunkBy(FrameMargins()));
    window_->show();
    if (!QTest::qWaitForWindowActive(window_.get()))
        throw std::runtime_error("the main window does not show");
}

void Studio::Settle() {
    QTest::qWait(StandsAfterMs);
}

QImage Studio::Picture() {
    return PictureOf(*window_);
}

QImage Studio::PictureOf(QWidget& window) {
    Settle();
    ThrowIfFailed();
    return Framed(window);
}

QImage Studio::PictureOfPart(const QString& panel) {
    constexpr QMargins around(8, 4, 8, 8);
    Settle();
    ThrowIfFailed();
    auto& part = Find<QWidget>(panel);
    const QRect place(part.mapTo(window_.get(), QPoint(0, 0)), part.size());
    return window_->grab(place.marginsAdded(around).intersected(window_->rect())).toImage();
}

QImage Studio::PictureOfSplash() {
    QImage picture;
    Show({}, Small, {{"frmSplash", [&](QWidget& splash) {
                          Settle();
                          picture = splash.grab().toImage();
                      }}});
    return picture;
}

void Studio::Walk(const std::function<void()>& open, std::vector<Step> steps) {
    const auto walk = std::make_shared<WalkState>(WalkState{std::move(steps)});
    Await(walk, 0, 0);
    open();
    walk->over = true;
    ThrowIfFailed();
}

// Looks again and again for the window of the next step; when there is none left, or something went
// wrong, it closes what is open.
void Studio::Await(const std::shared_ptr<WalkState>& walk, std::size_t next, int waited) {
    QTimer::singleShot(PollMs, window_.get(), [this, walk, next, waited] {
        if (walk->over)
            return;
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (walk->stepsDone || !failure_.isEmpty()) {
            Await(walk, next, 0);
            if (dialog)
                dialog->reject();
            return;
        }
        if (next == walk->steps.size()) { // the last step is still at work
            Await(walk, next, 0);
            return;
        }
        const Step& step = walk->steps[next];
        if (!dialog || NameOf(*dialog) != step.window) {
            if (waited > LongestWaitMs)
                NoteFailure("this window does not show: " + step.window);
            Await(walk, next, waited + PollMs);
            return;
        }
        Settle();
        // First, since what the step does may open the window of the one after.
        Await(walk, next + 1, 0);
        try {
            step.act(*dialog);
        } catch (const std::exception& error) {
            NoteFailure(error.what());
        }
        if (next + 1 == walk->steps.size())
            walk->stepsDone = true;
    });
}

QImage Studio::PictureOfDialog(const std::function<void()>& open, const QString& window,
                               const std::function<void(QWidget&)>& prepare) {
    QImage picture;
    Walk(open, {{window, [&](QWidget& dialog) {
                     if (prepare)
                         prepare(dialog);
                     picture = PictureOf(dialog);
                 }}});
    if (picture.isNull())
        Missing(window);
    return picture;
}

void Studio::Menu(const QString& name) {
    Find<QAction>(name).trigger();
}

void Studio::Click(const QString& name, QWidget* in) {
    auto& button = Find<QAbstractButton>(name, in);
    if (!button.isEnabled())
        throw std::runtime_error("this button can't be clicked: " + name.toStdString());
    QTest::mouseClick(&button, Qt::LeftButton);
}

void Studio::ClickText(const QString& text, QWidget* in) {
    for (QAbstractButton* button : in->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && button->text() == text) {
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
            return;
        }
    }
    Missing(text);
}

void Studio::Type(const QString& name, const QString& text, QWidget* in) {
    auto& field = Find<QWidget>(name, in);
    field.setFocus();
    QTest::keyClicks(&field, text);
}

void Studio::Choose(const QString& combo, const QString& entry, QWidget* in) {
    auto& box = Find<ComboBox>(combo, in);
    for (int i = 0; i < box.ListCount(); ++i) {
        if (box.List(i).contains(entry)) {
            box.SetListIndex(i);
            return;
        }
    }
    Missing(entry);
}

void Studio::SelectNode(const QString& tree, const QString& text) {
    auto& view = Find<TreeView>(tree);
    for (int i = 1; i <= view.Count(); ++i) {
        TreeNode& node = view.Item(i);
        if (node.Text().contains(text)) {
            view.scrollToItem(&node);
            QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                              view.visualItemRect(&node).center());
            return;
        }
    }
    Missing(text);
}

void Studio::SelectRow(const QString& grid, const QString& text) {
    auto& view = Find<Grid>(grid);
    for (int row = 1; row < view.Rows(); ++row) {
        for (int col = 0; col < view.Cols(); ++col) {
            if (view.TextMatrix(row, col).contains(text)) {
                ClickItem(view, view.model()->index(row - 1, col));
                return;
            }
        }
    }
    Missing(text);
}

void Studio::SelectCell(const QString& grid, int row, int col, QWidget* in) {
    auto& view = Find<Grid>(grid, in);
    ClickItem(view, view.model()->index(row - 1, col));
}

void Studio::SelectEntry(const QString& list, const QString& text, QWidget* in) {
    auto& view = Find<ListBox>(list, in);
    for (int i = 0; i < view.ListCount(); ++i) {
        if (view.List(i).contains(text)) {
            ClickItem(view, view.model()->index(i, 0));
            return;
        }
    }
    Missing(text);
}

void Studio::NoteFailure(const QString& text) {
    if (failure_.isEmpty())
        failure_ = text;
}

void Studio::ThrowIfFailed() const {
    if (!failure_.isEmpty())
        throw std::runtime_error(failure_.toStdString());
}

void Studio::Missing(const QString& what) {
    throw std::runtime_error("this is not there: " + what.toStdString());
}

} // namespace pollarix::images
