// Draws the program's icon at the sizes of the icon theme: draw_icon ICON.svg SIZE OUTPUT.png

#include <cstdio>
#include <cstdlib>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "draw_icon ICON.svg SIZE OUTPUT.png\n");
        return 2;
    }
    const int size = std::atoi(argv[2]);
    QSvgRenderer icon(QString::fromLocal8Bit(argv[1]));
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    icon.render(&painter);
    painter.end();
    return icon.isValid() && image.save(QString::fromLocal8Bit(argv[3])) ? 0 : 1;
}
