// A picture that can be taken: its name, what it shows, and the way there.
#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <vector>

namespace pollarix::images {

class Studio;

struct Scene {
    QString name; // of the picture's file, without its suffix
    QString shows;
    std::function<QImage(Studio& studio)> take; // each in a studio of its own
};

std::vector<Scene> DesignScenes();
std::vector<Scene> CollectionScenes();
std::vector<Scene> AnalysisScenes();
std::vector<Scene> WebScenes();
std::vector<Scene> ShellScenes();
std::vector<Scene> TutorialScenes();

} // namespace pollarix::images
