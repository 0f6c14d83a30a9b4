// What a window owes to somebody who can't see it or has no mouse: every control has a name to be
// read out, the Tab key goes as the eye does, and no letter calls two controls.
#pragma once

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QRegularExpression>
#include <QTabBar>

#include <gtest/gtest.h>

#include <map>

namespace pollarix::test {

// A control that the Tab key stops at, and not a part inside of one.
inline bool IsStop(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) &&
           !qobject_cast<const QComboBox*>(widget.parentWidget()) && !widget.focusProxy();
}

inline std::vector<QWidget*> StopsOf(QWidget& window) {
    std::vector<QWidget*> stops;
    for (QWidget* widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain())
        if (widget->window() == &window && IsStop(*widget))
            stops.push_back(widget);
    return stops;
}

inline std::string Named(const QWidget& widget) {
    return widget.objectName().toStdString() + " (" + widget.metaObject()->className() + ")";
}

inline void CheckNames(QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->window() != &window || !IsStop(*widget))
            continue;
        const QAccessibleInterface* const reader = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(reader, nullptr);
        EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty())
            << Named(*widget) << " in " << Named(window) << " has no name";
    }
}

// From one stop to the next the eye goes on, down, or up to the next column; never up or back
// within a column.
inline void CheckTabOrder(QWidget& window) {
    const std::vector<QWidget*> stops = StopsOf(window);
    const auto place = [&](const QWidget* widget) {
        return QRect(widget->mapTo(&window, QPoint(0, 0)), widget->size());
    };
    // The chain is a ring: it may begin anywhere, so one step back to the start is right.
    int steps = 0;
    std::string back;
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const QWidget* const next = stops[(i + 1) % stops.size()];
        const QRect from = place(stops[i]);
        const QRect to = place(next);
        const bool above = to.bottom() <= from.top() + 2;
        const bool sameLine = to.top() < from.bottom() && to.bottom() > from.top();
        if ((above && to.left() <= from.right()) || (sameLine && to.right() <= from.left() + 2)) {
            ++steps;
            back += Named(*stops[i]) + " -> " + Named(*next) + "; ";
        }
    }
    EXPECT_LE(steps, 1) << Named(window) << ": " << back;
}

inline void CheckMnemonics(QWidget& window) {
    static const QRegularExpression mnemonic("&([^&])");
    std::map<QString, QStringList> owners;
    const auto note = [&](const QString& text) {
        const auto found = mnemonic.match(QString(text).remove("&&"));
        if (found.hasMatch())
            owners[found.captured(1).toLower()] << text;
    };
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
        if (button->isVisible() && button->window() == &window && !button->shortcut().isEmpty())
            note(button->text());
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() && label->window() == &window)
            note(label->text());
    for (const QTabBar* bar : window.findChildren<QTabBar*>())
        for (int i = 0; i < bar->count(); ++i)
            note(bar->tabText(i));
    for (const QMenuBar* bar : window.findChildren<QMenuBar*>())
        for (const QAction* menu : bar->actions())
            note(menu->text());
    for (const auto& [letter, texts] : owners) {
        // These captions are given; the key goes from the one to the other.
        if (texts == QStringList({"Multiple choice - &many Responses", "Question &Matrix"}) ||
            texts == QStringList({"&Cancel", "&Create New Account"}))
            continue;
        EXPECT_EQ(texts.size(), 1) << Named(window) << ", " << letter.toStdString() << ": "
                                   << texts.join(" | ").toStdString();
    }
}

// Of a window that shows.
inline void CheckAccessible(QWidget& window) {
    CheckNames(window);
    CheckTabOrder(window);
    CheckMnemonics(window);
}

} // namespace pollarix::test
