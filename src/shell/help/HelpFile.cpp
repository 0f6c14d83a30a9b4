#include "shell/help/HelpFile.h"

#include <QFileInfo>
#include <QHelpEngine>
#include <QHelpLink>

#include "platform/base/Failure.h"
#include "shell/help/HelpWindow.h"

namespace pollarix {

HelpFile::HelpFile() = default;
HelpFile::~HelpFile() = default;

QHelpEngine& HelpFile::Engine() {
    if (engine_)
        return *engine_;
    if (!QFileInfo(path_).isFile())
        throw Failure(failure::FileNotFound, "The help file is not there: " + path_);
    auto notes = std::make_unique<QTemporaryDir>();
    auto engine = std::make_unique<QHelpEngine>(notes->filePath("help.qhc"));
    engine->setReadOnly(false);
    engine->setUsesFilterEngine(true);
    if (!notes->isValid() || !engine->setupData() || !engine->registerDocumentation(path_))
        throw Failure(failure::PathOrFileAccess,
                      "The help file can't be read: " + path_ + ": " + engine->error());
    // Once more, for contents and index of what was just registered.
    engine->setupData();
    notes_ = std::move(notes);
    engine_ = std::move(engine);
    return *engine_;
}

HelpWindow& HelpFile::Window() {
    if (!window_)
        window_ = std::make_unique<HelpWindow>(Engine());
    return *window_;
}

QUrl HelpFile::AddressOf(const QString& name) {
    const QList<QHelpLink> links = Engine().documentsForIdentifier(name);
    return links.isEmpty() ? QUrl() : links.first().url;
}

void HelpFile::ShowTopic(int number) {
    const QUrl address = AddressOf(number);
    if (address.isEmpty())
        throw Failure(failure::InvalidArgument,
                      QString("The help file has no topic %1").arg(number));
    Window().ShowTopic(address);
}

bool HelpFile::ShowTopicOf(const QString& name) {
    if (path_.isEmpty())
        return false; // the help file is not set yet
    const QUrl address = AddressOf(name);
    if (address.isEmpty())
        return false;
    Window().ShowTopic(address);
    return true;
}

void HelpFile::ShowIndex() {
    Window().ShowIndex();
}

void HelpFile::ShowSearch() {
    Window().ShowSearch();
}

} // namespace pollarix
