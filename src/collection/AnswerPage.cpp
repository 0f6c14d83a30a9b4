#include "collection/AnswerPage.h"

#include <QVBoxLayout>

namespace pollarix {

AnswerPage::AnswerPage(const char* name, QWidget* parent) : QWidget(parent) {
    setObjectName(name);
    hide();
}

void AnswerPage::Fill(QWidget& control) {
    auto* inside = new QVBoxLayout(this);
    inside->setContentsMargins(0, 0, 0, 0);
    inside->addWidget(&control);
}

} // namespace pollarix
