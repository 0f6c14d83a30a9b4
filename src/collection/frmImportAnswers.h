// The dialog of "Import Answers...": a table of answers from elsewhere, which column goes to which
// question, and what can't be matched, before anything is written. Reading, matching and writing
// are those of the room `tables`.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include <memory>

#include "document/ApplicationState.h"
#include "tables/AnswerImport.h"
#include "tables/OpenTable.h"

class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTabWidget;

namespace pollarix {

class ComboBox;
class Grid;

class frmImportAnswers : public QDialog {
    Q_OBJECT
  public:
    // Reads the head of the table and its first rows. Throws what opening it and reading the survey
    // throw.
    frmImportAnswers(ApplicationState& state, const QString& path, QWidget* parent);

    // Asks for a file and shows the dialog. True when answers were imported. What is wrong with the
    // file is told; throws what the survey's file throws.
    static bool mnuDataCollectionImport_Click(ApplicationState& state, QWidget* parent);

    void gColumns_Click();
    void cboTarget_Click();
    void cmdCheck_Click();
    void cmdImport_Click();

    // Closes, or stops what is under way.
    void reject() override;

  private:
    void BuildShape();
    void BuildColumns();
    void BuildBelow();
    void BuildFooter();
    void OrderTabs();

    void Open(const std::optional<tables::TableShape>& shape);
    void ShowShape();
    void ReadPreview();
    void ShowColumns();
    void ShowColumn(int row);
    void ShowMissing();
    void ShowProblems();
    void Shape_Click(); // any of the controls of how the file is read
    void Refuse(const Failure& failure);

    // Does the work with progress shown and nothing but Cancel to be pressed. False when it was
    // stopped or has failed, which has been told.
    bool Work(const QString& what, const std::function<bool(const tables::ImportStep&)>& work);
    bool Check();

    ApplicationState& state_;
    const QString path_;
    const statistics::SurveyVariables survey_;
    const QByteArray designDigest_;
    const std::vector<tables::NamedTarget> allTargets_;
    std::unique_ptr<tables::Table> table_;
    std::vector<tables::TableRow> preview_;
    std::vector<tables::Target> targets_;
    std::optional<tables::CheckedTable> checked_; // with these targets
    bool isShowing_ = false;                      // the controls are being filled
    bool isWorking_ = false;
    bool isStopped_ = false;

    QWidget* picBody_;
    QWidget* picText_ = nullptr;
    ComboBox* cboEncoding_ = nullptr;
    ComboBox* cboSeparator_ = nullptr;
    ComboBox* cboQuote_ = nullptr;
    QWidget* picSheet_ = nullptr;
    ComboBox* cboSheet_ = nullptr;
    QCheckBox* chkNames_ = nullptr;
    QCheckBox* chkNeighbours_ = nullptr;
    Grid* gColumns_ = nullptr;
    ComboBox* cboTarget_ = nullptr;
    QLabel* lblMissing_ = nullptr;
    QTabWidget* tabBelow_ = nullptr;
    Grid* gPreview_ = nullptr;
    Grid* gProblems_ = nullptr;
    QLabel* lblProgress_ = nullptr;
    QProgressBar* prgImport_ = nullptr;
    QPushButton* cmdCheck_ = nullptr;
    QPushButton* cmdImport_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

} // namespace pollarix
