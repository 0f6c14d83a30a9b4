// The Design screen as the document sees it, without the other screens: what the main window does
// for the program, for tests and benchmarks.
#pragma once

#include "design/picDesign.h"
#include "document/SurveyViews.h"

namespace pollarix::test {

struct DesignViews : SurveyViews {
    explicit DesignViews(picDesign& design_) : design(design_) {}
    picDesign& design;

    void ShowPath(const QString&) override {}
    void ClearTree() override { design.ClearTree(); }
    void AddRootNode() override { design.AddRootNode(); }
    void AddQuestionNode(const QString& key, const QString& text) override {
        design.AddQuestionNode(key, text);
    }
    void SelectNode(const QString& key) override { design.SelectNode(key); }
    void tvTreeView_NodeClick(const QString& key) override { design.tvTreeView_NodeClick(key); }
    std::optional<QString> SelectedKey() const override { return design.SelectedKey(); }
    QString PlainTextThroughEditor(const QString& rtf) override {
        return design.PlainTextThroughEditor(rtf);
    }
    QString EditorText() const override { return design.EditorText(); }
    void ClearEditors() override { design.ClearEditors(); }
    void LoadMatrixResponses() override { design.LoadMatrixResponses(); }
    void RefreshRespondeSummaryReportList() override {}
    void RefreshRespondentList() override {}
    void SetRedraw(bool on) override { design.SetRedraw(on); }
};

} // namespace pollarix::test
