// The path in the status bar: cut in its middle when the window is too narrow for it, so that the
// file's name stays readable, and whole in a tool tip. Never makes the window wider.
#pragma once

#include <QLabel>

namespace pollarix {

class PathLabel : public QLabel {
    Q_OBJECT
  public:
    explicit PathLabel(QWidget* parent);

    QSize minimumSizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QString ShownText() const;
};

} // namespace pollarix
