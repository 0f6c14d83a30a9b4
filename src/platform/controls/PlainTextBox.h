// A box for plain text of any length: what was put in and not touched comes out as it was, and a
// long line does not make typing slow. Text without a format only; RichTextBox has formats.
#pragma once

#include <QPlainTextEdit>

namespace pollarix {

class PlainTextBox : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit PlainTextBox(QWidget* parent = nullptr);

    // Clears the undo history.
    void SetText(const QString& text);
    // As it was put in until somebody edits it, then with CR LF line ends.
    QString Text() const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData* source) override;

  private:
    QString Typed() const;

    QString given_;
    QString shown_; // what the given text reads like when nobody has edited it
};

} // namespace pollarix
