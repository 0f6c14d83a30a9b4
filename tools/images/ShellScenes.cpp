// The small windows around the main window: splash, tip, about box, help.
#include <QTest>

#include "images/Scene.h"
#include "images/Studio.h"
#include "shell/frmMain.h"
#include "shell/help/HelpFile.h"
#include "shell/help/HelpWindow.h"

namespace pollarix::images {

namespace {

QImage Dialog(Studio& studio, const QString& menu, const QString& window) {
    studio.StartWithSample(Small);
    return studio.PictureOfDialog([&] { studio.Menu(menu); }, window);
}

QImage Help(Studio& studio) {
    studio.StartWithSample(Small);
    HelpFile& help = studio.MainWindow().Help();
    help.ShowTopic(HelpFile::Contents);
    help.Window().resize(1000, 700);
    QTest::qWait(1000); // contents and index are read behind the window
    help.ShowTopic(HelpFile::Tutorial);
    return studio.PictureOf(help.Window());
}

QImage Find(Studio& studio) {
    studio.StartWithSample(Small);
    studio.Menu("mnuViewAnalyse");
    QTest::keyClick(&studio.MainWindow(), Qt::Key_F, Qt::ControlModifier);
    auto& find = studio.Find<QWidget>("frmFind");
    studio.Type("txtFind", "staff", &find);
    QTest::keyClick(&studio.Find<QWidget>("txtFind", &find), Qt::Key_Return);
    return studio.PictureOf(find);
}

} // namespace

std::vector<Scene> ShellScenes() {
    return {
        {"find", "Window that finds a text", Find},
        {"splash", "Splash at the start", [](Studio& studio) { return studio.PictureOfSplash(); }},
        {"tip", "Tip of the day",
         [](Studio& studio) { return Dialog(studio, "mnuHelpTipOfTheDay", "frmTip"); }},
        {"about", "About box",
         [](Studio& studio) { return Dialog(studio, "mnuAbout", "frmAbout"); }},
        {"help", "Help window with the tutorial", Help},
    };
}

} // namespace pollarix::images
