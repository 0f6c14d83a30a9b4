// Every test program runs under a QApplication without a screen, in the C locale, with settings and
// data below a temporary home.
#include <QApplication>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    QApplication application(argc, argv);
    QApplication::setApplicationName("pollarix");
    QLocale::setDefault(QLocale::c());
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
