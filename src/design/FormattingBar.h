// The row of buttons above the question text: bold, italic, underline, bullets, colour, font, size.
// It shows the format at the caret and changes that of the selection, or of what is typed next.
// It knows the text box only, no question.
#pragma once

#include <QWidget>

#include <functional>

class QComboBox;
class QFontComboBox;
class QToolButton;

namespace pollarix {

class RichTextBox;

class FormattingBar : public QWidget {
    Q_OBJECT
  public:
    FormattingBar(RichTextBox& box, QWidget* parent);

    // The user has changed the format through the bar.
    std::function<void()> Changed;

    QWidget* LastControl() const; // in the Tab key's order

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QToolButton* NewButton(const char* name, const char* icon, const QString& says);
    QToolButton* NewToggle(const char* name, const char* icon, const QString& says,
                           void (FormattingBar::*toggle)());
    void ToggleBold();
    void ToggleItalic();
    void ToggleUnderline();
    void ToggleBullets();
    void FillColours();
    void ApplyColour(const QColor& colour);
    void ApplySize();
    void Apply(const std::function<void()>& change);
    void ShowFormatSoon();
    void ShowFormat();

    RichTextBox& box_;
    QToolButton* cmdBold_;
    QToolButton* cmdItalic_;
    QToolButton* cmdUnderline_;
    QToolButton* cmdBullets_;
    QToolButton* cmdColour_;
    QFontComboBox* cboFontName_;
    QComboBox* cboFontSize_;
    bool showPending_ = false;
};

} // namespace pollarix
