#include "platform/controls/ComboBox.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QProxyStyle>
#include <QScreen>
#include <QStyleOptionComboBox>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/Focus.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

namespace {

constexpr int NarrowestBox = 6; // characters
constexpr int RowsOfPopup = 16;

// A list with a scroll bar below the box: some styles would else cover the screen with entries. No
// style sheet says so, since a box with one keeps its colors when those of the desktop change.
class ListBelow : public QProxyStyle {
  public:
    ListBelow() : QProxyStyle(QApplication::style()->name()) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* more) const override {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, more);
    }
};

} // namespace

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    // First of all: the list asks the style for its scroll bar when it is made.
    auto* const style = new ListBelow;
    style->setParent(this);
    setStyle(style);
    setItemDelegate(new OneLineDelegate(this, OneLineDelegate::Width::Full));
    view()->setTextElideMode(Qt::ElideRight);
    // Long entries do not push the window's other controls aside.
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(NarrowestBox);
    setMaxVisibleItems(RowsOfPopup);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::activated, this, [this] {
        raised_ = true;
        RunHandler(Click);
    });
}

void ComboBox::RequireEntry(int index) const {
    if (index < 0 || index >= count())
        throw Failure(failure::InvalidArgument);
}

void ComboBox::AddItem(const QString& text) {
    const int selected = currentIndex();
    addItem(text, qlonglong{0});
    newIndex_ = count() - 1;
    setCurrentIndex(selected); // an empty box has selected its first entry by itself
}

int ComboBox::NewIndex() const {
    return newIndex_;
}

void ComboBox::Clear() {
    clear();
    newIndex_ = -1;
}

int ComboBox::ListCount() const {
    return count();
}

QString ComboBox::List(int index) const {
    RequireEntry(index);
    return itemText(index);
}

std::int64_t ComboBox::ItemData(int index) const {
    RequireEntry(index);
    return itemData(index).toLongLong();
}

void ComboBox::SetItemData(int index, std::int64_t data) {
    RequireEntry(index);
    setItemData(index, static_cast<qlonglong>(data));
}

int ComboBox::ListIndex() const {
    return currentIndex();
}

void ComboBox::SetListIndex(int index) {
    if (index != -1)
        RequireEntry(index);
    setCurrentIndex(index);
    if (Click)
        Click();
}

QString ComboBox::Text() const {
    return currentText();
}

void ComboBox::showPopup() {
    // Wide enough for the longest entry, but never a wall of text across the screen.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    const int frame = 2 * style()->pixelMetric(QStyle::PM_ComboBoxFrameWidth, nullptr, this);
    const int wanted = view()->sizeHintForColumn(modelColumn()) + bar + frame;
    const int most = std::max(width(), screen()->availableGeometry().width() / 2);
    view()->setMinimumWidth(std::clamp(wanted, width(), most));
    QComboBox::showPopup();
}

bool ComboBox::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty())
        return QComboBox::event(event);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QString text = Text();
    if (option.currentText != text)
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), PlainToolTip(text), this);
    else
        QToolTip::hideText();
    return true;
}

void ComboBox::keyPressEvent(QKeyEvent* event) {
    // The base class would look for an entry that begins with what Ctrl makes of a letter.
    if (event->modifiers() & Qt::ControlModifier && event->key() >= Qt::Key_A &&
        event->key() <= Qt::Key_Z) {
        event->ignore();
        return;
    }
    const int before = ListIndex();
    raised_ = false;
    QComboBox::keyPressEvent(event);
    // Choosing an entry by its first letters is no activation to the base class.
    if (!raised_ && ListIndex() != before)
        RunHandler(Click);
}

void ComboBox::wheelEvent(QWheelEvent* event) {
    // Scrolling over a box on the way changes no answer; only the box in use follows the wheel.
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ComboBox::focusOutEvent(QFocusEvent* event) {
    QComboBox::focusOutEvent(event);
    if (IsFocusLossByUser(*this, *event))
        RunHandler(LostFocus);
}

void ComboBox::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    // Not every style cuts a long text with dots by itself.
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this);
    option->currentText = option->fontMetrics.elidedText(OneLine(option->currentText),
                                                         Qt::ElideRight, field.width() - 4);
}

void SelectComboItemByData(ComboBox& box, const QString& data) {
    if (box.ListCount() == 0)
        return;
    std::int64_t wanted = 0;
    try {
        wanted = ToNumber64(data);
    } catch (const Failure&) {
        return; // what is no number matches no entry
    }
    for (int i = 0; i < box.ListCount(); ++i) {
        if (box.ItemData(i) == wanted) {
            box.SetListIndex(i);
            return;
        }
    }
}

} // namespace pollarix
