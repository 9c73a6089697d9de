#include "app/window/DropVeil.h"

#include <QPainter>

#include "app/kit/Icons.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"
#include "language/AppLanguage.h"
#include "language/Plural.h"

namespace tarnovel::app {

namespace {

constexpr QSize cardSize(400, 192);
constexpr int inset = 12;
constexpr float veil = 0.64F;

QString title(DropVeil::Offer offer, qsizetype count)
{
    switch (offer) {
    case DropVeil::Offer::Photos:
        return localized({"松开以添加 ", "Drop to add ", "Déposez pour ajouter "}) + countedPhotos(count);
    case DropVeil::Offer::Background:
        return localized({"用作背景", "Use as background", "Utiliser comme fond"});
    case DropVeil::Offer::Nothing:
        break;
    }
    return localized({"无法使用这些文件", "These files cannot be used", "Ces fichiers ne conviennent pas"});
}

QString detail(DropVeil::Offer offer)
{
    switch (offer) {
    case DropVeil::Offer::Photos:
        return localized({"编辑中添加的照片会使用当前风格。",
                          "Photos added while editing take the current style.",
                          "Les photos ajoutées prennent le style actuel."});
    case DropVeil::Offer::Background:
        return localized({"第一张图片会铺在照片后面。", "The first image goes behind the photo.",
                          "La première image passe derrière la photo."});
    case DropVeil::Offer::Nothing:
        break;
    }
    return localized({"支持 JPEG、HEIC、PNG、AVIF、WebP、TIFF 和 RAW。",
                      "JPEG, HEIC, PNG, AVIF, WebP, TIFF and raw work.",
                      "JPEG, HEIC, PNG, AVIF, WebP, TIFF et RAW conviennent."});
}

} // namespace

DropVeil::DropVeil(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropVeil::offer(Offer offer, qsizetype count)
{
    m_offer = offer;
    m_count = count;
    setAccessibleName(title(offer, count));
    raise();
    show();
    update();
}

void DropVeil::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Theme &look = theme();
    const bool refused = m_offer == Offer::Nothing;
    const QColor accent = refused ? look.danger : look.accent;
    QColor cover = refused ? look.canvas : look.selection;
    cover.setAlphaF(veil);
    painter.fillRect(rect(), cover);
    const QRectF frame = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    Paint::outline(painter, frame, 12, accent, 2);
    const QRectF card(QPointF((width() - cardSize.width()) / 2.0, (height() - cardSize.height()) / 2.0),
                      QSizeF(cardSize));
    drawShadow(painter, card, 12, Elevation::Popover);
    Paint::rounded(painter, card, 12, look.surface);
    const QRectF disc(card.center().x() - 24, card.top() + 36, 48, 48);
    Paint::rounded(painter, disc, 24, accent);
    Icons::draw(painter,
                refused                        ? "close"
                : m_offer == Offer::Background ? "image"
                                               : "plus",
                disc.center() - QPointF(10, 10), 20, refused ? look.onDanger : look.onAccent);
    painter.setPen(look.ink);
    painter.setFont(typeFont(Type::Title));
    painter.drawText(QRectF(card.left(), card.top() + 96, card.width(), 36), Qt::AlignCenter,
                     title(m_offer, m_count));
    painter.setPen(look.inkSecondary);
    painter.setFont(typeFont(Type::Body));
    painter.drawText(QRectF(card.left() + 16, card.top() + 130, card.width() - 32, 40),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, detail(m_offer));
}

} // namespace tarnovel::app
