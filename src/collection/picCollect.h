// The Data Collection screen: title, instructions and the list of respondents.
#pragma once

#include <QWidget>

#include <functional>

#include "document/ApplicationState.h"

class QLabel;

namespace pollarix {

class picRespondentList;

class picCollect : public QWidget {
    Q_OBJECT
  public:
    picCollect(ApplicationState& state, QWidget* parent);

    picRespondentList& RespondentList() { return *picRespondentList_; }

    // Places what lies inside. The window's outer size in pixels.
    void LayOut(int windowWidth, int windowHeight);

  private:
    QLabel* picTitleCollect_;
    QLabel* lblInstructions_;
    picRespondentList* picRespondentList_;
};

} // namespace pollarix
