// The visible rich text editor: bold, italic, underline, size, font, colour, bullets; text in any
// script. Text is taken and given as RTF (TextRTF) or plain with CR LF line ends (Text).
#pragma once

#include <QTextEdit>

#include <functional>

#include "platform/controls/Focus.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

class WrittenBlocks;

class RichTextBox : public QTextEdit {
    Q_OBJECT
  public:
    explicit RichTextBox(QWidget* parent = nullptr);

    QString TextRTF() const;
    void SetTextRTF(const QString& rtf); // raises nothing; clears the undo history
    QString Text() const;
    void SetText(const QString& plain);

    int SelStart() const;
    void SetSelStart(int position); // also drops the selection
    int SelLength() const;
    void SetSelLength(int length);

    // Formatting of the selection, or of what is typed next. A colour that isn't valid stands for
    // the window's own. The user has Ctrl+B, Ctrl+I, Ctrl+U and, for bullets, Ctrl+Shift+L.
    void SetSelBold(bool on);
    void SetSelItalic(bool on);
    void SetSelUnderline(bool on);
    void SetSelFontSize(double points);
    void SetSelFontName(const QString& name);
    void SetSelColour(const QColor& colour);
    void SetSelBullet(bool on);

    // Raised by the user's keys, for every key but Tab, which leaves the box: KeyDown before the
    // box acts on it, KeyUp after. What an input method enters counts as a key.
    std::function<void(QKeyEvent&)> KeyDown;
    std::function<void(QKeyEvent&)> KeyUp;
    // Raised after the mouse has changed the text: pasted, dropped into it, dragged out of it.
    std::function<void()> ChangedByMouse;
    // Raised when the user moves the focus from the box to another control or window of the program
    // (not to a popup or menu, and not when code moves the focus, see MoveFocusQuietly).
    std::function<void()> LostFocus;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    // Copying offers rich text, HTML and plain text; pasting takes them in that order, and of them
    // only what rich text holds.
    QMimeData* createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    void Fill(const RichText& text);
    void ByMouse(const std::function<void()>& act);

    WrittenBlocks* written_; // the document's
};

} // namespace pollarix
