#include "app/collage/LimitNotice.h"

#include <algorithm>

#include <QAccessible>
#include <QFontMetrics>
#include <QPainter>
#include <QTimerEvent>

#include "app/kit/Icons.h"
#include "app/kit/Motion.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"
#include "language/AppLanguage.h"

namespace tarnovel::app {

namespace {

constexpr int pillHeight = 40;
constexpr int padding = 16;
constexpr int iconSize = 16;
constexpr int iconGap = 8;
/// Around the pill, for its shadow and the spring.
constexpr int margin = 44;
constexpr int shownMs = 3000;
constexpr double smallest = 0.8;

QString notice()
{
    return localized({"最多选九张照片。", "A collage holds nine photos.", "Un collage compte neuf photos."});
}

} // namespace

LimitNotice::LimitNotice(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    m_motion.setStartValue(0.0);
    m_motion.setEndValue(1.0);
    connect(&m_motion, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_shown = value.toDouble();
        update();
    });
    hide();
}

void LimitNotice::present()
{
    setAccessibleName(notice());
    setAnchor(m_anchor);
    m_motion.stop();
    m_motion.setDuration(Motion::reduced() ? Motion::reducedMs : Motion::springMs);
    m_motion.setEasingCurve(Motion::reduced() ? QEasingCurve(QEasingCurve::InOutQuad) : Motion::spring());
    m_end.start(shownMs, this);
    raise();
    show();
    m_motion.start();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void LimitNotice::setAnchor(QPoint bottomCentre)
{
    m_anchor = bottomCentre;
    const int text = QFontMetrics(typeFont(Type::BodyMedium)).horizontalAdvance(notice());
    const QSize size(text + 2 * padding + iconSize + iconGap + 2 + 2 * margin, pillHeight + 2 * margin);
    setGeometry(QRect(bottomCentre - QPoint(size.width() / 2, size.height() - margin), size));
}

void LimitNotice::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setOpacity(std::clamp(m_shown, 0.0, 1.0));
    if (!Motion::reduced()) {
        const double scale = smallest + (1 - smallest) * m_shown;
        const QPointF middle = QRectF(rect()).center();
        painter.translate(middle);
        painter.scale(scale, scale);
        painter.translate(-middle);
    }
    const QRectF pill = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    drawShadow(painter, pill, pillHeight / 2.0, Elevation::Popover);
    Paint::rounded(painter, pill, pillHeight / 2.0, theme().toast);
    Icons::draw(painter, "info", {pill.left() + padding, pill.center().y() - iconSize / 2.0}, iconSize,
                theme().onToast);
    painter.setFont(typeFont(Type::BodyMedium));
    painter.setPen(theme().onToast);
    painter.drawText(pill.adjusted(padding + iconSize + iconGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     notice());
}

void LimitNotice::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_end.timerId()) {
        m_end.stop();
        hide();
    }
}

} // namespace tarnovel::app
