// A Design screen over a real survey file, driven through its widgets. Failures that no handler
// caught are collected; a test that expects one takes it, any other fails the test.
#pragma once

#include <QListWidget>
#include <QMainWindow>

#include <gtest/gtest.h>

#include "design/picDesign.h"
#include "document/SurveyDocument.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {

class DesignScreen : public testing::Test, protected TestState {
  protected:
    DesignScreen();
    ~DesignScreen() override;

    // A fresh survey without questions in a file of its own, as New gives it; and the same with
    // questions of these kinds whose texts are "Q1", "Q2" and so on, saved.
    void NewSurvey();
    void SurveyOf(std::initializer_list<std::int32_t> kinds);
    void Reopen();
    void Add(std::int32_t qType); // by the Design menu

    template <class Control> Control& Get(const char* name) const {
        auto* const control = window_.findChild<Control*>(name);
        if (!control)
            throw std::runtime_error(std::string("no control ") + name);
        return *control;
    }
    void Press(const char* button);
    void Key(const char* control, Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    void ClickNode(int question); // 1-based; 0 is the root
    void ClickEntry(const char* list, int index);
    // Replaces the text in the panel by hand.
    void WriteText(const QString& text);
    void AddResponses(const char* box, const QStringList& texts); // each with Enter

    // Texts for the numbers from the first to the last, joined with "|".
    static QString Joined(int first, int last, const std::function<QString(int)>& text);
    // Joined alike: texts below the root, of a list, of a question's responses, and the first
    // field of each row that the file gives.
    QString Nodes() const;
    QString Entries(const char* list) const;
    QString Responses(int question) const;
    QString Rows(const char* sql);
    clsQ& Q(int question) { return *state.CurrentSurvey.GetQIndex(std::int16_t(question)); }
    QString SelectedKey() const { return *design_->SelectedKey(); }
    clsSurvey& Survey() { return state.CurrentSurvey; }
    // Whether an action marks the survey as changed.
    bool Marks(const std::function<void()>& action);
    // Does something in the modal dialog that the next action opens.
    template <class Dialog> void InDialog(std::function<void(QWidget&)> act) {
        InNextDialog(Dialog::staticMetaObject.className(), std::move(act));
    }

    QMainWindow window_;
    picDesign* design_;
    SurveyDocument document_;
    QStringList failures_; // "number description"

  private:
    void InNextDialog(const char* className, std::function<void(QWidget&)> act);
    int surveys_ = 0;
};

} // namespace pollarix::test
