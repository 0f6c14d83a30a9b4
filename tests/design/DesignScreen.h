// A Design screen over a real survey file, driven through its widgets. Failures that no handler
// caught are collected; a test that expects one takes it, any other fails the test.
#pragma once

#include <QListWidget>
#include <QMainWindow>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "design/picDesign.h"
#include "document/SurveyDocument.h"
#include "platform/ComboBox.h"
#include "platform/ListBox.h"
#include "platform/RichTextBox.h"
#include "platform/TreeView.h"
#include "support/PrintQt.h"
#include "support/QueuedDialogs.h"

namespace pollarix::test {

class DesignScreen : public testing::Test, protected SurveyViews {
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
    void Type(const char* control, const QString& text);
    void ClickNode(int question); // 1-based; 0 is the root
    void ClickEntry(const char* list, int index);
    // Replaces the text in the panel by hand.
    void WriteText(const QString& text);
    void AddResponses(const char* box, const QStringList& texts); // each with Enter

    QStringList Nodes() const; // texts below the root
    QStringList Entries(const char* list) const;
    QStringList Responses(int question) const;
    clsQ& Q(int question) { return *state_.CurrentSurvey.GetQIndex(std::int16_t(question)); }
    clsSurvey& Survey() { return state_.CurrentSurvey; }
    // The first field of each row that the file gives.
    QStringList Rows(const char* sql);
    // Whether an action marks the survey as changed.
    bool Marks(const std::function<void()>& action);
    // Does something in the modal dialog that the next action opens.
    template <class Dialog> void InDialog(std::function<void(QWidget&)> act) {
        InNextDialog(Dialog::staticMetaObject.className(), std::move(act));
    }

    // SurveyViews
    void ShowPath(const QString&) override {}
    void ClearTree() override { design_->ClearTree(); }
    void AddRootNode() override { design_->AddRootNode(); }
    void AddQuestionNode(const QString& key, const QString& text) override {
        design_->AddQuestionNode(key, text);
    }
    void SelectNode(const QString& key) override { design_->SelectNode(key); }
    void tvTreeView_NodeClick(const QString& key) override { design_->tvTreeView_NodeClick(key); }
    std::optional<QString> SelectedKey() const override { return design_->SelectedKey(); }
    QString PlainTextThroughEditor(const QString& rtf) override {
        return design_->PlainTextThroughEditor(rtf);
    }
    QString EditorText() const override { return design_->EditorText(); }
    void ClearEditors() override { design_->ClearEditors(); }
    void LoadMatrixResponses() override { design_->LoadMatrixResponses(); }
    void RefreshRespondeSummaryReportList() override {}
    void RefreshRespondentList() override {}
    void SetRedraw(bool on) override { design_->SetRedraw(on); }

    QTemporaryDir folder_;
    Settings settings_;
    QueuedDialogs dialogs_;
    ApplicationState state_;
    SurveyDocument document_;
    QMainWindow window_;
    picDesign* design_;
    QStringList failures_; // "number description"

  private:
    void InNextDialog(const char* className, std::function<void(QWidget&)> act);
    int surveys_ = 0;
};

} // namespace pollarix::test
