// The program's main window for a test, and a user who sits by it. Failures that reached the top
// of a handler are kept.
#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

#include "platform/base/Handlers.h"
#include "shell/Attendant.h"
#include "shell/frmMain.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {

struct UsedWindow {
    UsedWindow() {
        SetFailureReporter(
            [this](const Failure& failure) { failures.push_back(failure.Number()); });
    }
    ~UsedWindow() { SetFailureReporter({}); }
    UsedWindow(const UsedWindow&) = delete;
    UsedWindow& operator=(const UsedWindow&) = delete;

    void Start(const QString& commandLine = {}) {
        window = std::make_unique<frmMain>(program.state);
        window->Form_Load(commandLine);
        window->resize(1024, 740);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    void Open(const QString& path) {
        dialogs.fileNames = {{path, 0}};
        Menu("mnuFileOpen");
    }
    // In the main window, or in one that it shows.
    template <typename Control> Control* Find(const char* name, const QWidget* in = nullptr) const {
        Control* control = (in ? in : window.get())->findChild<Control*>(name);
        if (!control)
            throw std::runtime_error(std::string("no control ") + name);
        return control;
    }
    void Menu(const char* name) const { Find<QAction>(name)->trigger(); }
    void Press(const char* name, const QWidget* in = nullptr) const {
        Find<QAbstractButton>(name, in)->click();
    }

    TestState program;
    QueuedDialogs& dialogs = program.dialogs;
    std::unique_ptr<frmMain> window;
    std::vector<int> failures;
    Attendant user; // sees away what no task is set for
};

class MainWindow : public testing::Test, protected UsedWindow {};

} // namespace pollarix::test
