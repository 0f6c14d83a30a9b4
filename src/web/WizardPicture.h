// The picture at the left of each wizard page: at the top, and its ground below it down to the
// page's buttons.
#pragma once

#include <QWidget>

namespace pollarix {

class WizardPicture : public QWidget {
    Q_OBJECT
  public:
    explicit WizardPicture(QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace pollarix
