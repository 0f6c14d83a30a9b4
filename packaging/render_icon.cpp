// Draws an icon as a picture of one size, for the desktops that want it so.
//   render_icon drawing.svg size picture.png
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;

    QSvgRenderer drawing(arguments[1]);
    const int size = arguments[2].toInt();
    QImage picture(size, size, QImage::Format_ARGB32);
    if (!drawing.isValid() || picture.isNull()) {
        std::fprintf(stderr, "%s can't be drawn\n", argv[1]);
        return 1;
    }
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter);
    }
    if (!picture.save(arguments[3])) {
        std::fprintf(stderr, "%s can't be written\n", argv[3]);
        return 1;
    }
    return 0;
}
