// The icons compiled into the program.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace pollarix::test {
namespace {

// Share of an icon's opaque pixels that stand out from a background, by relative luminance.
double VisibleShare(const QImage& icon, double background) {
    int opaque = 0;
    int visible = 0;
    for (int y = 0; y < icon.height(); ++y) {
        for (int x = 0; x < icon.width(); ++x) {
            const QColor color = icon.pixelColor(x, y);
            if (color.alpha() < 128)
                continue;
            ++opaque;
            const auto linear = [](double part) {
                return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
            };
            const double own = 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
                               0.0722 * linear(color.blueF());
            const double high = std::max(own, background);
            const double low = std::min(own, background);
            visible += (high + 0.05) / (low + 0.05) >= 2.5 ? 1 : 0;
        }
    }
    return opaque == 0 ? 0 : static_cast<double>(visible) / opaque;
}

TEST(Icons, EachDrawsAtEverySizeOnLightAndDark) {
    const QStringList names = QDir(":/icons").entryList({"*.svg"});
    for (const char* needed : {"pollarix", "design", "data-collection", "analyze", "add-question",
                               "add-text", "up", "down", "delete", "survey-file", "wizard"}) {
        EXPECT_TRUE(names.contains(QString("%1.svg").arg(needed))) << needed;
    }
    for (const QString& name : names) {
        QSvgRenderer drawing(":/icons/" + name);
        ASSERT_TRUE(drawing.isValid()) << name.toStdString();
        for (const int size : {16, 24, 48}) {
            QImage icon(size, size, QImage::Format_ARGB32_Premultiplied);
            icon.fill(Qt::transparent);
            QPainter painter(&icon);
            drawing.render(&painter, QRectF(0, 0, size, size));
            painter.end();
            const double onLight = VisibleShare(icon, 0.90); // nearly white
            const double onDark = VisibleShare(icon, 0.025); // a dark theme's window
            EXPECT_GT(onLight, 0.1) << name.toStdString() << " at " << size;
            EXPECT_GT(onDark, 0.5) << name.toStdString() << " at " << size;
        }
    }
}

} // namespace
} // namespace pollarix::test
