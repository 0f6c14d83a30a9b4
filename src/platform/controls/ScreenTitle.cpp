#include "platform/controls/ScreenTitle.h"

#include <QLabel>

namespace pollarix {

namespace {

QLabel* NewStrip(const QString& name, const QString& caption, QWidget* parent,
                 QPalette::ColorRole background, QPalette::ColorRole text) {
    auto* strip = new QLabel(caption, parent);
    strip->setObjectName(name);
    strip->setTextFormat(Qt::PlainText);
    strip->setIndent(8);
    strip->setAutoFillBackground(true);
    strip->setBackgroundRole(background);
    strip->setForegroundRole(text);
    QFont font = strip->font();
    font.setBold(true);
    strip->setFont(font);
    return strip;
}

} // namespace

QLabel* NewScreenTitle(const QString& name, const QString& caption, QWidget* parent) {
    QLabel* title = NewStrip(name, caption, parent, QPalette::Highlight, QPalette::HighlightedText);
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    title->setFont(font);
    return title;
}

QLabel* NewPanelTitle(const QString& name, const QString& caption, QWidget* parent) {
    return NewStrip(name, caption, parent, QPalette::Button, QPalette::ButtonText);
}

QLabel* NewInstructions(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName("lblInstructions");
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QLabel* NewHeading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace pollarix
