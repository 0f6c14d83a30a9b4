// The question library: ready-made question texts by category, read from a database of its own that
// nothing here writes to. It gives text only; where the text goes is the Design screen's business.
#pragma once

#include <functional>

#include "design/ListPanel.h"
#include "document/ApplicationState.h"
#include "platform/controls/TreeView.h"

namespace pollarix {

class picLibraryView : public ListPanel {
    Q_OBJECT
  public:
    // `addText` takes the text that the user has chosen.
    picLibraryView(ApplicationState& state, std::function<void(const QString&)> addText,
                   QWidget* parent);

    // Fills the tree; called once, with LibraryConnection open. Throws what the database throws.
    void LoadLibrary();

    void cmdLibraryAdd_Click();

  private:
    ApplicationState& state_;
    std::function<void(const QString&)> addText_;
    TreeView* tvTreeLibrary_;
};

} // namespace pollarix
