#include "collection/AnswerList.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QKeyEvent>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QTextLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

#include "platform/base/ShownText.h"

namespace pollarix {

namespace {

constexpr int NarrowestText = 120; // pixels
constexpr int RoomBetween = 4;
constexpr qsizetype LongestAnswer = 4000; // characters that are shown of it

// A button's text is one line unless it holds line ends, so long answers are broken to the width by
// hand. An "&" is text here and no mnemonic.
QString Wrapped(const QString& text, const QFont& font, int width) {
    QStringList lines;
    for (QString paragraph : text.split('\n')) {
        paragraph.remove('\r');
        QTextLayout layout(paragraph, font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        const qsizetype before = lines.size();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines << paragraph.mid(line.textStart(), line.textLength());
        }
        layout.endLayout();
        if (lines.size() == before)
            lines << QString();
    }
    return lines.join('\n').replace('&', "&&");
}

} // namespace

AnswerList::AnswerList(Kind kind, QString buttonName, QWidget* parent)
    : QScrollArea(parent), kind_(kind), buttonName_(std::move(buttonName)), column_(new QWidget),
      layout_(new QVBoxLayout(column_)) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    layout_->setContentsMargins(2, 2, 2, 2);
    layout_->setSpacing(RoomBetween);
    layout_->addStretch();
    if (kind_ == Kind::Radio)
        group_ = new QButtonGroup(this);
    setWidget(column_);
    viewport()->installEventFilter(this);
    Load();
    Button(0)->hide();
}

void AnswerList::Load() {
    QAbstractButton* button = nullptr;
    if (kind_ == Kind::Radio) {
        button = new QRadioButton(column_);
        group_->addButton(button);
    } else {
        button = new QCheckBox(column_);
    }
    button->setObjectName(QString("%1(%2)").arg(buttonName_).arg(buttons_.size()));
    button->installEventFilter(this);
    if (const std::size_t number = buttons_.size() + 1; number <= 9)
        button->setToolTip(QString("Key %1").arg(number));
    // Each stands below the one before; the stretch stays last. The Tab key follows.
    layout_->insertWidget(layout_->count() - 1, button);
    if (!buttons_.empty())
        QWidget::setTabOrder(buttons_.back(), button);
    buttons_.push_back(button);
    texts_.emplace_back();
    tags_.push_back(0);
}

void AnswerList::Clear() {
    while (buttons_.size() > 1) {
        delete buttons_.back();
        buttons_.pop_back();
        texts_.pop_back();
        tags_.pop_back();
    }
    SetValue(0, false);
    // The one that was chosen kept the Tab key from all others.
    Button(0)->setFocusPolicy(Qt::StrongFocus);
    Button(0)->hide();
    verticalScrollBar()->setValue(0);
}

int AnswerList::Add(const QString& text, std::int64_t tag) {
    if (!Button(0)->isHidden())
        Load();
    const int i = UBound();
    const QString shown = Shortened(text, LongestAnswer);
    texts_.back() = shown;
    tags_.back() = tag;
    Button(i)->setAccessibleName(shown);
    Button(i)->setText(Wrapped(shown, Button(i)->font(), TextWidth()));
    Button(i)->show();
    return i;
}

bool AnswerList::IsButtonVisible(int i) const {
    return !Button(i)->isHidden();
}

bool AnswerList::Value(int i) const {
    return Button(i)->isChecked();
}

void AnswerList::SetValue(int i, bool on) {
    // A group keeps its last button on by itself.
    if (group_ && !on)
        group_->setExclusive(false);
    Button(i)->setChecked(on);
    if (group_)
        group_->setExclusive(true);
}

void AnswerList::FocusButton(int i) {
    Button(i)->setFocus(Qt::TabFocusReason);
}

int AnswerList::EntryButton() const {
    for (int i = 0; group_ && i <= UBound(); ++i)
        if (Value(i))
            return i;
    return 0;
}

void AnswerList::ShowFirstChosen() {
    const auto show = [this] {
        const auto chosen =
            std::find_if(buttons_.begin(), buttons_.end(),
                         [](const QAbstractButton* button) { return button->isChecked(); });
        if (chosen != buttons_.end())
            ensureWidgetVisible(*chosen);
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}

int AnswerList::TextWidth() const {
    const bool radio = kind_ == Kind::Radio;
    const QStyle& look = *style();
    const int indicator = look.pixelMetric(
        radio ? QStyle::PM_ExclusiveIndicatorWidth : QStyle::PM_IndicatorWidth, nullptr, this);
    const int space = look.pixelMetric(radio ? QStyle::PM_RadioButtonLabelSpacing
                                             : QStyle::PM_CheckBoxLabelSpacing,
                                       nullptr, this);
    const QMargins margins = layout_->contentsMargins();
    // What is left over keeps the focus frame clear of the edge.
    return std::max(NarrowestText,
                    viewport()->width() - indicator - space - margins.left() - margins.right() - 8);
}

void AnswerList::WrapTexts() {
    const int width = TextWidth();
    for (std::size_t i = 0; i < buttons_.size(); ++i)
        buttons_[i]->setText(Wrapped(texts_[i], buttons_[i]->font(), width));
}

bool AnswerList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == viewport()) {
        const bool done = QScrollArea::eventFilter(watched, event);
        if (event->type() == QEvent::Resize)
            WrapTexts();
        return done;
    }
    if (event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::MouseFocusReason && reason != Qt::ActiveWindowFocusReason)
            ensureWidgetVisible(static_cast<QWidget*>(watched));
    } else if (event->type() == QEvent::KeyPress) {
        // On some desktops Enter would press the button. It is the window's.
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
            event->ignore();
            return true;
        }
        // The button may have been scrolled away from. What it leaves goes on to the column.
        if (watched != column_)
            ensureWidgetVisible(static_cast<QWidget*>(watched));
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace pollarix
