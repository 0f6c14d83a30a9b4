#include "design/ListPanel.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"

namespace pollarix {

namespace {

constexpr int RowMargin = 6;

} // namespace

ListPanel::ListPanel(const char* name, const char* backing, int spare, const QString& caption,
                     QWidget* parent)
    : QWidget(parent), backing_(new QFrame(this)), spare_(spare), rows_(new QVBoxLayout(backing_)),
      buttons_(new QHBoxLayout) {
    setObjectName(name);
    backing_->setObjectName(backing);
    backing_->setFrameShape(QFrame::StyledPanel);

    QLabel* const strip = NewPanelTitle(QString("%1Title").arg(backing), caption, backing_);
    strip->setFixedHeight(PanelTitleHeight);
    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(0);
    rows_->addWidget(strip);
    rows_->addStretch(1);
    buttons_->setContentsMargins(RowMargin, RowMargin, RowMargin, RowMargin);
    buttons_->setSpacing(RowMargin);
    rows_->addLayout(buttons_);
}

int ListPanel::StripHeight() const {
    return backing_->frameWidth() + PanelTitleHeight;
}

int ListPanel::ButtonRowHeight() const {
    return buttons_->sizeHint().height() + backing_->frameWidth();
}

void ListPanel::FillWith(QWidget* tree) {
    delete rows_->takeAt(1);
    rows_->insertWidget(1, tree, 1);
}

void ListPanel::resizeEvent(QResizeEvent*) {
    // The strip is to stand above the tree, so the panel that carries it is as high as its place at
    // the bottom allows.
    const int height = this->height() - ToPixels(spare_);
    backing_->setGeometry(0, this->height() - height - ToPixels(spare_), width(), height);
}

} // namespace pollarix
