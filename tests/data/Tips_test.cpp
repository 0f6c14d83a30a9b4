// The tips as they lie beside the program: one a line, whatever the line holds.
#include <gtest/gtest.h>

#include <QFile>
#include <QSet>

#include "support/Places.h"

namespace pollarix::test {
namespace {

TEST(Tips, EachLineIsAWholeTipThatFitsItsWindow) {
    QFile file(DataFile("TipOfTheDay.txt"));
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    const QByteArray bytes = file.readAll();
    ASSERT_TRUE(bytes.endsWith('\n'));
    QList<QByteArray> lines = bytes.chopped(1).split('\n');
    EXPECT_GE(lines.size(), 40);
    for (const QByteArray& line : lines) {
        EXPECT_TRUE(line.endsWith('.') || line.endsWith('?')) << line.constData();
        EXPECT_EQ(line, line.simplified());
        EXPECT_LE(line.size(), 180) << line.constData();
    }
    EXPECT_EQ(QSet<QByteArray>(lines.begin(), lines.end()).size(), lines.size());
}

} // namespace
} // namespace pollarix::test
