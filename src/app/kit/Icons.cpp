#include "app/kit/Icons.h"

#include <algorithm>
#include <cstring>

#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include "app/kit/IconPaths.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app::Icons {

namespace {

QByteArray stroked(const char *name, const QColor &color)
{
    const auto *row = std::find_if(iconPaths.begin(), iconPaths.end(), [name](const IconPath &icon) {
        return std::strcmp(icon.name, name) == 0;
    });
    Q_ASSERT_X(row != iconPaths.end(), "Icons", name);
    return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 20 20"><path fill="none" stroke-width="1.5")"
           R"( stroke-linecap="round" stroke-linejoin="round" stroke=")" +
           color.name().toLatin1() + R"(" d=")" + row->path + R"("/></svg>)";
}

/// The program's icon, a framed picture over its line of text, in other colours.
QByteArray mark(const QColor &ground, const QColor &figure)
{
    QFile file(u":/tarnovel/io.github.tarnovel.Tarnovel.svg"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll()
        .replace(Theme::light().accent.name().toLatin1(), ground.name().toLatin1())
        .replace(Theme::light().onAccent.name().toLatin1(), figure.name().toLatin1());
}

QPixmap rendered(const QByteArray &svg, QSize size, double ratio)
{
    QPixmap pixmap(size * ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(svg).render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace

QPixmap pixmap(const char *name, int size, const QColor &color, double ratio)
{
    static QHash<QString, QPixmap> drawn;
    const QString key = u"%1 %2 %3 %4"_s.arg(QLatin1StringView(name)).arg(size).arg(color.rgba()).arg(ratio);
    auto place = drawn.find(key);
    if (place == drawn.end()) {
        QPixmap icon = rendered(stroked(name, color), {size, size}, ratio);
        place = drawn.insert(key, icon);
    }
    return *place;
}

void draw(QPainter &painter, const char *name, QPointF at, int size, const QColor &color)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QPointF snapped(qRound(at.x() * ratio) / ratio, qRound(at.y() * ratio) / ratio);
    painter.drawPixmap(snapped, pixmap(name, size, color, ratio));
}

void drawMark(QPainter &painter, const QRectF &rect)
{
    QSvgRenderer(mark(theme().accent, theme().onAccent)).render(&painter, rect);
}

QPixmap application(int size)
{
    return rendered(mark(Theme::light().accent, Theme::light().onAccent), {size, size}, 1);
}

} // namespace tarnovel::app::Icons
