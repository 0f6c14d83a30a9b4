// The splash: product, systems and legal warning, for three seconds or until a key or click.
#pragma once

#include <QDialog>

class QFrame;
class QTimer;

namespace pollarix {

class frmSplash : public QDialog {
    Q_OBJECT
  public:
    explicit frmSplash(QWidget* parent = nullptr);

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    QFrame* Frame1_;
    QTimer* Timer1_;
};

} // namespace pollarix
