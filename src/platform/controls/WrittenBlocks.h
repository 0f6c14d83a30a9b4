// The RTF of a text widget's document, kept block by block: a key changes one block, and only that
// one is written anew. The bytes are those that WriteRichText gives for the whole document.
#pragma once

#include <QObject>
#include <QString>

class QTextDocument;

namespace pollarix {

class WrittenBlocks : public QObject {
  public:
    // Lives as long as the document, whose blocks' user data it takes for itself.
    explicit WrittenBlocks(QTextDocument& document);

    QString Rtf() const;

  private:
    void Forget(int from, int added);

    QTextDocument& document_;
};

} // namespace pollarix
