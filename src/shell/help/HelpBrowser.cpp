#include "shell/help/HelpBrowser.h"

#include <QEvent>
#include <QHelpEngineCore>
#include <QScrollBar>

namespace pollarix {

namespace {

constexpr int Margin = 18; // around the text, in pixels

} // namespace

HelpBrowser::HelpBrowser(QHelpEngineCore& engine, QWidget* parent)
    : QTextBrowser(parent), engine_(engine) {
    document()->setDocumentMargin(Margin);
    // Always there, so that its coming does not take the pictures' room away.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    ApplyColours();
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const QUrl address = name.isRelative() ? source().resolved(name) : name;
    if (address.scheme() != "qthelp")
        return {};
    const QByteArray bytes = engine_.fileData(address);
    if (type != QTextDocument::ImageResource)
        return bytes;
    const QImage picture = QImage::fromData(bytes);
    pictures_.insert(name, picture);
    return Fitted(picture);
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QUrl address = source().resolved(name);
    if (address.scheme() != "qthelp")
        return;
    const auto page = [](const QUrl& url) { return url.adjusted(QUrl::RemoveFragment); };
    if (page(address) != page(source()))
        pictures_.clear();
    QTextBrowser::doSetSource(address, type);
}

QImage HelpBrowser::Fitted(const QImage& picture) const {
    const int room = viewport()->width() - 2 * Margin;
    if (picture.width() <= room || room < 1)
        return picture;
    return picture.scaledToWidth(room, Qt::SmoothTransformation);
}

void HelpBrowser::resizeEvent(QResizeEvent* event) {
    for (auto picture = pictures_.cbegin(); picture != pictures_.cend(); ++picture)
        document()->addResource(QTextDocument::ImageResource, picture.key(),
                                Fitted(picture.value()));
    if (!pictures_.isEmpty())
        document()->markContentsDirty(0, document()->characterCount());
    QTextBrowser::resizeEvent(event);
}

void HelpBrowser::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    const int place = verticalScrollBar()->value();
    ApplyColours();
    if (!source().isEmpty())
        reload();
    verticalScrollBar()->setValue(place);
}

void HelpBrowser::ApplyColours() {
    const auto mix = [this](double share) {
        const QColor text = palette().color(QPalette::Text);
        const QColor base = palette().color(QPalette::Base);
        const auto part = [share](int of, int with) {
            return int(of * share + with * (1 - share));
        };
        return QColor(part(text.red(), base.red()), part(text.green(), base.green()),
                      part(text.blue(), base.blue()))
            .name();
    };
    document()->setDefaultStyleSheet(
        QString("h1 { font-size: xx-large; font-weight: 600; margin-top: 0px; "
                "margin-bottom: 10px; }"
                "h2 { font-size: x-large; font-weight: 600; margin-top: 20px; "
                "margin-bottom: 6px; }"
                "h3 { font-size: large; font-weight: 600; margin-top: 14px; "
                "margin-bottom: 4px; }"
                "p, li { margin-top: 4px; margin-bottom: 6px; line-height: 125%; }"
                "td, th { padding: 4px 8px 4px 8px; border-color: %2; }"
                "th { background-color: %1; text-align: left; }"
                "table { border-color: %2; border-style: solid; border-collapse: collapse; "
                "margin-top: 8px; margin-bottom: 10px; }"
                "kbd, code { background-color: %1; }"
                "a { color: %3; }"
                ".note { background-color: %1; margin-top: 10px; margin-bottom: 10px; }"
                ".picture { margin-top: 8px; margin-bottom: 12px; }")
            .arg(mix(0.08), mix(0.3), palette().color(QPalette::Link).name()));
}

} // namespace pollarix
