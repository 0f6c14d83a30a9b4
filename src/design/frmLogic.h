// The dialog that gives one response its jump: the question to go on with when it is chosen. Lives
// for one edit and changes nothing but that response.
#pragma once

#include <QDialog>

#include "document/SurveyEditor.h"
#include "platform/controls/ComboBox.h"

class QLabel;

namespace pollarix {

class frmLogic : public QDialog {
    Q_OBJECT
  public:
    // The response at the position (1-based) of the question.
    frmLogic(SurveyEditor& editor, std::shared_ptr<clsQ> LogicQuestion,
             std::int16_t LogicResponseIndex, QWidget* parent);

    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    void Form_Load();

    SurveyEditor& editor_;
    std::shared_ptr<clsQ> LogicQuestion_;
    std::int16_t LogicResponseIndex_;
    QLabel* lblWhen_;
    ComboBox* cboList_;
};

} // namespace pollarix
