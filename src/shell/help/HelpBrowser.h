// Shows a page of the help file: its pictures no wider than the window, its colours those of the
// desktop's theme. Links lead within the help file and nowhere else.
#pragma once

#include <QHash>
#include <QImage>
#include <QTextBrowser>

class QHelpEngineCore;

namespace pollarix {

class HelpBrowser : public QTextBrowser {
    Q_OBJECT
  public:
    HelpBrowser(QHelpEngineCore& engine, QWidget* parent);

    QVariant loadResource(int type, const QUrl& name) override;

  protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void ApplyColours();
    QImage Fitted(const QImage& picture) const;

    QHelpEngineCore& engine_;
    QHash<QUrl, QImage> pictures_; // of the page that shows, in their own size
};

} // namespace pollarix
