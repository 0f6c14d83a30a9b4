// The icons compiled into the program.
#include <gtest/gtest.h>

#include <QDir>
#include <QSvgRenderer>

namespace pollarix::test {
namespace {

TEST(Icons, TheOnesInUseAreThereAndCanBeDrawn) {
    const QStringList names = QDir(":/icons").entryList({"*.svg"});
    for (const char* needed : {"pollarix", "design", "data-collection", "analyze", "add-question",
                               "add-text", "up", "down", "delete", "survey-file", "wizard"}) {
        EXPECT_TRUE(names.contains(QString("%1.svg").arg(needed))) << needed;
    }
    for (const QString& name : names) {
        EXPECT_TRUE(QSvgRenderer(":/icons/" + name).isValid()) << name.toStdString();
    }
}

} // namespace
} // namespace pollarix::test
