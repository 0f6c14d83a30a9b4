#include "design/FormattingBar.h"

#include <QColorDialog>
#include <QComboBox>
#include <QEvent>
#include <QFontComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpressionValidator>
#include <QTextList>
#include <QTimer>
#include <QToolButton>

#include <array>
#include <cmath>

#include "platform/base/Handlers.h"
#include "platform/controls/Focus.h"
#include "platform/controls/RichTextBox.h"

namespace pollarix {

namespace {

constexpr int IconSide = 16; // pixels
constexpr double SmallestSize = 1;
constexpr double LargestSize = 200;
constexpr std::array Sizes = {8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 32, 36, 48, 72};

struct NamedColour {
    const char* name;
    QRgb rgb;
};
// Dark enough to be read on white paper.
constexpr std::array Colours = {
    NamedColour{"Black", 0xff000000},  NamedColour{"Grey", 0xff666666},
    NamedColour{"Red", 0xffc01c28},    NamedColour{"Orange", 0xffc64600},
    NamedColour{"Brown", 0xff865e3c},  NamedColour{"Green", 0xff1e7a46},
    NamedColour{"Teal", 0xff0e7c86},   NamedColour{"Blue", 0xff1a5fb4},
    NamedColour{"Purple", 0xff813d9c}, NamedColour{"Pink", 0xffc02f80},
};

// Ctrl with a letter is no name of a font that begins with it, but whoever's around the list.
class FontList : public QFontComboBox {
  public:
    using QFontComboBox::QFontComboBox;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->modifiers() & Qt::ControlModifier && event->key() >= Qt::Key_A &&
            event->key() <= Qt::Key_Z)
            event->ignore();
        else
            QFontComboBox::keyPressEvent(event);
    }
};

QIcon ColourIcon(const QColor& colour) {
    QPixmap swatch(IconSide, IconSide);
    swatch.fill(colour);
    return QIcon(swatch);
}

} // namespace

FormattingBar::FormattingBar(RichTextBox& box, QWidget* parent)
    : QWidget(parent), box_(box),
      cmdBold_(NewToggle("cmdBold", "bold", "Bold (Ctrl+B)", &FormattingBar::ToggleBold)),
      cmdItalic_(NewToggle("cmdItalic", "italic", "Italic (Ctrl+I)", &FormattingBar::ToggleItalic)),
      cmdUnderline_(NewToggle("cmdUnderline", "underline", "Underline (Ctrl+U)",
                              &FormattingBar::ToggleUnderline)),
      cmdBullets_(NewToggle("cmdBullets", "bullets", "Bullets (Ctrl+Shift+L)",
                            &FormattingBar::ToggleBullets)),
      cmdColour_(NewButton("cmdColour", "text-color", "Colour")), cboFontName_(new FontList(this)),
      cboFontSize_(new QComboBox(this)) {
    setObjectName("FormattingBar");
    FillColours();

    cboFontName_->setObjectName("cboFontName");
    cboFontName_->setAccessibleName("Font");
    cboFontName_->setToolTip("Font");
    cboFontName_->setEditable(false);
    cboFontName_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboFontName_->setMinimumContentsLength(4);
    connect(cboFontName_, &QComboBox::textActivated, this,
            [this](const QString& name) { Apply([&] { box_.SetSelFontName(name); }); });

    cboFontSize_->setObjectName("cboFontSize");
    cboFontSize_->setAccessibleName("Font size");
    cboFontSize_->setToolTip("Font size");
    for (const int size : Sizes)
        cboFontSize_->addItem(QString::number(size));
    cboFontSize_->setEditable(true);
    cboFontSize_->setInsertPolicy(QComboBox::NoInsert);
    // With comma or point, whatever the desktop's language, and never completed to another size.
    cboFontSize_->setValidator(new QRegularExpressionValidator(
        QRegularExpression("[0-9]{0,3}([.,][0-9]?)?"), cboFontSize_));
    cboFontSize_->setCompleter(nullptr);
    cboFontSize_->setMinimumContentsLength(3);
    cboFontSize_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(cboFontSize_, &QComboBox::textActivated, this, [this] { ApplySize(); });
    connect(cboFontSize_->lineEdit(), &QLineEdit::returnPressed, this, [this] {
        // A size of the list has been activated by the same key.
        if (cboFontSize_->findText(cboFontSize_->currentText()) == -1)
            ApplySize();
    });
    connect(cboFontSize_->lineEdit(), &QLineEdit::editingFinished, this,
            &FormattingBar::ShowFormatSoon);
    for (QComboBox* const box : {static_cast<QComboBox*>(cboFontName_), cboFontSize_}) {
        box->setFocusPolicy(Qt::StrongFocus);
        box->installEventFilter(this);
    }

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (QToolButton* const button : {cmdBold_, cmdItalic_, cmdUnderline_, cmdBullets_, cmdColour_})
        row->addWidget(button);
    row->addSpacing(6);
    row->addWidget(cboFontName_, 1);
    row->addWidget(cboFontSize_);
    row->addStretch(1);
    cboFontName_->setMaximumWidth(240);

    connect(&box_, &QTextEdit::currentCharFormatChanged, this, &FormattingBar::ShowFormatSoon);
    connect(&box_, &QTextEdit::cursorPositionChanged, this, &FormattingBar::ShowFormatSoon);
    ShowFormatSoon();
}

QWidget* FormattingBar::LastControl() const {
    return cboFontSize_;
}

// A click leaves the focus, and with it the selection one sees, in the text box; the Tab key
// reaches the button all the same.
QToolButton* FormattingBar::NewButton(const char* name, const char* icon, const QString& says) {
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setIcon(QIcon(QString(":/icons/%1.svg").arg(icon)));
    button->setIconSize(QSize(IconSide, IconSide));
    button->setAccessibleName(says);
    button->setToolTip(says);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* FormattingBar::NewToggle(const char* name, const char* icon, const QString& says,
                                      void (FormattingBar::*toggle)()) {
    QToolButton* const button = NewButton(name, icon, says);
    button->setCheckable(true);
    connect(button, &QToolButton::clicked, this,
            [this, toggle] { Apply([&] { (this->*toggle)(); }); });
    return button;
}

void FormattingBar::FillColours() {
    auto* const menu = new QMenu(cmdColour_);
    menu->addAction("Automatic", this, [this] { ApplyColour({}); });
    for (const NamedColour& colour : Colours)
        menu->addAction(ColourIcon(QColor(colour.rgb)), colour.name, this,
                        [this, rgb = colour.rgb] { ApplyColour(QColor(rgb)); });
    menu->addSeparator();
    menu->addAction("More Colours...", this, [this] {
        const QColor chosen = QColorDialog::getColor(box_.textColor(), window(), "Colour");
        if (chosen.isValid())
            ApplyColour(chosen);
    });
    cmdColour_->setMenu(menu);
    cmdColour_->setPopupMode(QToolButton::InstantPopup);
}

void FormattingBar::ToggleBold() {
    box_.SetSelBold(box_.fontWeight() < QFont::DemiBold);
}

void FormattingBar::ToggleItalic() {
    box_.SetSelItalic(!box_.fontItalic());
}

void FormattingBar::ToggleUnderline() {
    box_.SetSelUnderline(!box_.fontUnderline());
}

void FormattingBar::ToggleBullets() {
    box_.SetSelBullet(!box_.textCursor().currentList());
}

void FormattingBar::ApplyColour(const QColor& colour) {
    Apply([&] { box_.SetSelColour(colour); });
}

void FormattingBar::ApplySize() {
    bool isNumber = false;
    const double typed = cboFontSize_->currentText().replace(',', '.').toDouble(&isNumber);
    const double size = std::round(typed * 2) / 2; // rich text counts in half points
    if (isNumber && size >= SmallestSize && size <= LargestSize)
        Apply([&] { box_.SetSelFontSize(size); });
    else
        ShowFormatSoon();
}

void FormattingBar::Apply(const std::function<void()>& change) {
    RunHandler([&] {
        change();
        // Where one typed is where one goes on typing.
        MoveFocusQuietly(box_);
        if (Changed)
            Changed();
    });
    ShowFormatSoon();
}

// Scrolling over a box on the way changes no format; only the box in use follows the wheel.
bool FormattingBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus())
        return QWidget::eventFilter(watched, event);
    event->ignore();
    return true;
}

// Once for all that happens in one turn of the event loop: while a survey is loaded the box shows
// every question.
void FormattingBar::ShowFormatSoon() {
    if (showPending_)
        return;
    showPending_ = true;
    QTimer::singleShot(0, this, [this] {
        showPending_ = false;
        ShowFormat();
    });
}

void FormattingBar::ShowFormat() {
    const QFont font = box_.currentFont();
    cmdBold_->setChecked(font.weight() >= QFont::DemiBold);
    cmdItalic_->setChecked(font.italic());
    cmdUnderline_->setChecked(font.underline());
    cmdBullets_->setChecked(box_.textCursor().currentList() != nullptr);
    // The family alone: the box reads all fonts anew for each other font it is given.
    cboFontName_->setCurrentFont(QFont(font.family()));
    cboFontSize_->setEditText(QString::number(font.pointSizeF()));
}

} // namespace pollarix
