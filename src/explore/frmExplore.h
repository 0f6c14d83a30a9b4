// The window that answers questions to questions: who gave an answer, compared with whom, and how
// sure that is. Not modal; stands beside the main window and works on a copy of the answers in
// memory, so that nothing it does changes the survey.
#pragma once

#include <QWidget>

#include <memory>

#include "document/ApplicationState.h"
#include "explore/ExploreTable.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "platform/desktop/LongWork.h"
#include "statistics/Filter.h"

class QLabel;
class QLineEdit;

namespace pollarix {

class frmExplore : public QWidget {
    Q_OBJECT
  public:
    // Shows nothing until mnuAnalyseExplore_Click.
    frmExplore(ApplicationState& state, LongWork& work, QWidget* parent);

    // Reads the answers of the open survey anew, and shows the window. Does nothing while long work
    // runs. Throws what the database throws; the window then shows what it showed.
    void mnuAnalyseExplore_Click();

    void txtSearch_Change();
    void cboFilterVariable_Click();
    void cmdFilterAdd_Click();
    void cmdFilterClear_Click();
    void cmdCopy_Click();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void BuildControls();
    void Load();
    void FillCombos();
    void RefreshFilter();
    void RefreshTable();
    QString Caption() const;

    ApplicationState& state_;
    LongWork& work_;
    std::unique_ptr<statistics::Answers> answers_;
    QString loadedFrom_; // path of the survey that the answers are of
    std::vector<ExploreItem> items_;
    statistics::Filter filter_;
    statistics::Sample sample_;
    ExploreTable table_;

    QLineEdit* txtSearch_;
    ListBox* lstVariables_;
    ComboBox* cboColumns_;
    ComboBox* cboCells_;
    ComboBox* cboFilterVariable_;
    ComboBox* cboFilterAnswer_;
    ComboBox* cboFilterJoin_;
    QLabel* lblFilter_;
    Grid* gTable_;
    QLabel* lblNotes_;
};

} // namespace pollarix
