// The icons compiled into the program.
#include <gtest/gtest.h>

#include <QDir>
#include <QSvgRenderer>

namespace pollarix::test {
namespace {

TEST(Icons, CanAllBeDrawn) {
    const QStringList names = QDir(":/icons").entryList({"*.svg"});
    EXPECT_GT(names.size(), 20);
    for (const QString& name : names)
        EXPECT_TRUE(QSvgRenderer(":/icons/" + name).isValid()) << name.toStdString();
}

} // namespace
} // namespace pollarix::test
