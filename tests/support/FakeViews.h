// The screens as the document sees them, without a widget: what it asks for is kept and can be
// read.
#pragma once

#include <QList>
#include <QPair>
#include <QStringList>

#include "document/SurveyViews.h"
#include "platform/richtext/RichText.h"

namespace pollarix::test {

class FakeViews : public SurveyViews {
  public:
    QString path;
    QList<QPair<QString, QString>> nodes; // key and text, the root first
    std::optional<QString> selected;
    QStringList clicks; // keys
    QString editor;
    QStringList calls; // refreshes and loads, in order

    QStringList Texts() const {
        QStringList texts;
        for (const auto& node : nodes)
            texts << node.second;
        return texts;
    }

    void ShowPath(const QString& text) override { path = text; }
    void ClearTree() override {
        nodes.clear();
        selected.reset();
    }
    void AddRootNode() override { nodes.append(qMakePair(QString(RootKey), QString("Survey"))); }
    void AddQuestionNode(const QString& key, const QString& text) override {
        nodes.append(qMakePair(key, text));
    }
    void SelectNode(const QString& key) override { selected = key; }
    void tvTreeView_NodeClick(const QString& key) override { clicks << key; }
    std::optional<QString> SelectedKey() const override { return selected; }
    QString PlainTextThroughEditor(const QString& rtf) override {
        editor = PlainTextOf(rtf);
        return editor;
    }
    QString EditorText() const override { return editor; }
    void ClearEditors() override { editor.clear(); }
    void LoadMatrixResponses() override { calls << "scales"; }
    void RefreshRespondeSummaryReportList() override { calls << "summary"; }
    void RefreshRespondentList() override { calls << "respondents"; }
    void SetRedraw(bool) override {}
};

} // namespace pollarix::test
