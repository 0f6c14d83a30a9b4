// Writes pictures of the program's windows as PNG files:
//   make_images [--output directory] [--list] [name...]
// Names may hold wildcards ("design-*"); without any, all pictures are taken.
#include <QCommandLineParser>
#include <QDir>
#include <QImageWriter>
#include <QLocale>
#include <QRegularExpression>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>

#include "images/FewColours.h"
#include "images/Scene.h"
#include "images/Studio.h"
#include "platform/desktop/Application.h"

namespace {

using namespace pollarix::images;

std::vector<Scene> AllScenes() {
    std::vector<Scene> all;
    for (const auto& scenes : {DesignScenes(), CollectionScenes(), AnalysisScenes(), WebScenes(),
                               ShellScenes(), TutorialScenes()})
        all.insert(all.end(), scenes.begin(), scenes.end());
    return all;
}

// Of the names, those that no scene has are told in `unknown`.
std::vector<Scene> Chosen(const QStringList& names, QStringList& unknown) {
    const std::vector<Scene> all = AllScenes();
    if (names.isEmpty())
        return all;
    std::vector<Scene> chosen;
    for (const QString& name : names) {
        const auto form = QRegularExpression::fromWildcard(name);
        const std::size_t before = chosen.size();
        for (const Scene& scene : all)
            if (form.match(scene.name).hasMatch())
                chosen.push_back(scene);
        if (chosen.size() == before)
            unknown << name;
    }
    return chosen;
}

bool IsBlank(const QImage& picture) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) != picture.pixel(0, 0))
                return false;
    return true;
}

bool Take(const Scene& scene, const QString& path) {
    const auto complain = [&](const QString& what) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(scene.name), qPrintable(what));
        return false;
    };
    QImage picture;
    try {
        Studio studio;
        picture = scene.take(studio);
    } catch (const std::exception& error) {
        return complain(error.what());
    }
    if (IsBlank(picture))
        return complain("the picture is blank");
    QImageWriter writer(path, "png");
    writer.setCompression(100);
    return writer.write(WithFewColours(picture)) || complain(writer.errorString());
}

// Without a desktop nobody raises windows or takes hints about sizes, which is said for each.
void Say(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (!text.startsWith("This plugin does not support"))
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(Say);
    // Nothing of whoever runs this shows in a picture.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    pollarix::Application application(argc, argv);
    // The same look on whatever desktop it is run.
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication::setCursorFlashTime(0); // the caret always shows

    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({"list", "Names the pictures and what they show."});
    options.addOption({"output", "Where the pictures go.", "directory", "."});
    options.addPositionalArgument("name", "Pictures to take, all if none is named.", "[name...]");
    options.process(application);

    QStringList unknown;
    const std::vector<Scene> scenes = Chosen(options.positionalArguments(), unknown);
    if (!unknown.isEmpty()) {
        std::fprintf(stderr, "no such picture: %s\n", qPrintable(unknown.join(", ")));
        return 2;
    }
    const QDir output(QDir::current().absoluteFilePath(options.value("output")));
    int failed = 0;
    for (const Scene& scene : scenes) {
        if (options.isSet("list"))
            std::printf("%-24s %s\n", qPrintable(scene.name), qPrintable(scene.shows));
        else if (!output.mkpath(".") || !Take(scene, output.filePath(scene.name + ".png")))
            ++failed;
    }
    return failed == 0 ? 0 : 1;
}
