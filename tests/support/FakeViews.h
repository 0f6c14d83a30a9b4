// The screen as the document sees it, without a widget: what it is asked for is kept and can be
// read.
#pragma once

#include <QStringList>

#include "document/SurveyViews.h"

namespace pollarix::test {

class FakeViews : public SurveyViews {
  public:
    std::vector<Node> nodes = {{RootKey, "Survey"}}; // the root first
    std::optional<QString> selected;
    QStringList clicks; // keys
    QString editor;

    QStringList Texts() const {
        QStringList texts;
        for (const Node& node : nodes)
            texts << node.text;
        return texts;
    }

    void ShowTree(const std::vector<Node>& questions) override {
        nodes = {{RootKey, "Survey"}};
        nodes.insert(nodes.end(), questions.begin(), questions.end());
        selected.reset();
    }
    void SelectNode(const QString& key) override { selected = key; }
    void tvTreeView_NodeClick(const QString& key) override { clicks << key; }
    std::optional<QString> SelectedKey() const override { return selected; }
    QString EditorText() const override { return editor; }
    void ClearEditors() override { editor.clear(); }
    void LoadMatrixResponses() override {}
};

} // namespace pollarix::test
