#include "app/window/HomeScreen.h"

#include <algorithm>
#include <array>

#include <QBoxLayout>
#include <QDateTime>
#include <QEvent>
#include <QLocale>
#include <QPainter>
#include <QTimeZone>

#include "app/Wording.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Label.h"
#include "app/kit/Shadow.h"
#include "app/kit/Switch.h"
#include "app/kit/Theme.h"
#include "app/window/RecoveryCard.h"
#include "language/Plural.h"
#include "pipeline/PlacedPhoto.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize dropCard(944, 416);
constexpr int continueHeight = 96;
constexpr int topDistance = 104;
/// With a kept session below it, the drop card is lower and begins higher.
constexpr int lowDropHeight = 376;
constexpr int lowTopDistance = 48;
/// What the drop card gives way to at the most.
constexpr int leastDropHeight = 200;
constexpr int cardGap = 24;
constexpr int sideMargin = 24;
constexpr int shownPhotos = 6;
constexpr int leastTop = 12;
constexpr QSize samplesSize(460, 400);

class Card : public QWidget {
public:
    explicit Card(bool dashed) : m_dashed(dashed) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 16, theme().surface);
        if (!m_dashed) {
            Paint::outline(painter, rect(), 16, theme().hairline);
            return;
        }
        QPen pen(theme().controlLine, 1);
        pen.setDashPattern({3, 3});
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 16, 16);
    }

private:
    bool m_dashed;
};

struct Sample {
    const char *file;
    BuiltInTemplate look;
    const char *title;
    const char *caption;
    QSize box;
    /// Centre in the picture's room of 460 × 400, and rotation in degrees.
    QPointF centre;
    double degrees;
};

constexpr std::array<Sample, 3> samples = {
    {{"ridges", BuiltInTemplate::plain, "", "", {170, 220}, {138, 204}, -6},
     {"leaves", BuiltInTemplate::tone, "", "", {170, 220}, {326, 196}, 6},
     {"stairs", BuiltInTemplate::gallery, "White wall", "Oia, 2024", {187, 249}, {232, 200}, 0}}};

QImage framed(const Sample &sample, double ratio)
{
    const QImage photo(u":/tarnovel/"_s + QString::fromLatin1(sample.file) + u".jpg"_s);
    PhotoItem item;
    item.width = photo.width();
    item.height = photo.height();
    item.settings.layer(u"title"_s)->text = QString::fromLatin1(sample.title);
    item.settings.layer(u"caption"_s)->text = QString::fromLatin1(sample.caption);
    item.settings = BuiltInTemplates::make(sample.look, item.settings, {{0.49, 0.64, 0.33}});
    const QSize canvas = (QSizeF(sample.box) * ratio).toSize();
    QImage image(canvas, QImage::Format_RGB32);
    QPainter painter(&image);
    const PhotoPlacement placement = CompositionRenderer::photoPlacement(item, item.settings, canvas);
    CompositionRenderer::draw(painter, item, item.settings, canvas,
                              {.photo = placedPhoto(photo, placement, canvas)});
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}

/// A card lower than this is too low for them.
constexpr int leastSampleHeight = 240;

QDateTime dateTime(SecondsSince2001 seconds)
{
    const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
    return epoch.addMSecs(static_cast<qint64>(seconds * 1000)).toLocalTime();
}

/// "yesterday, 18:40", in the current language.
QString spokenTime(const QDateTime &time)
{
    const qint64 days = time.date().daysTo(QDate::currentDate());
    const QString clock = time.toString(u"HH:mm"_s);
    if (days == 0) {
        return localized({"今天 ", "today, ", "aujourd’hui, "}) + clock;
    }
    if (days == 1) {
        return localized({"昨天 ", "yesterday, ", "hier, "}) + clock;
    }
    return time.toString(u"yyyy.MM.dd"_s) + u' ' + clock;
}

} // namespace

SampleFrames::SampleFrames(QWidget *parent) : QWidget(parent)
{
    setFixedWidth(samplesSize.width());
    setMinimumHeight(0);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void SampleFrames::paintEvent(QPaintEvent *)
{
    if (m_ratio != devicePixelRatioF()) {
        m_ratio = devicePixelRatioF();
        m_frames.clear();
        for (const Sample &sample : samples) {
            m_frames.append(framed(sample, m_ratio));
        }
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double scale = std::min(double(height()) / samplesSize.height(), 1.0);
    painter.translate(width() / 2.0, height() / 2.0);
    painter.scale(scale, scale);
    painter.translate(-samplesSize.width() / 2.0, -samplesSize.height() / 2.0);
    for (size_t i = 0; i < samples.size(); ++i) {
        const Sample &sample = samples.at(i);
        painter.save();
        painter.translate(sample.centre);
        painter.rotate(sample.degrees);
        const QRectF box(QPointF(-sample.box.width() / 2.0, -sample.box.height() / 2.0), QSizeF(sample.box));
        drawShadow(painter, box, 0, Elevation::Frame);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawImage(box, m_frames.at(static_cast<qsizetype>(i)));
        Paint::outline(painter, box, 0, theme().rim);
        painter.restore();
    }
}

SessionRow::SessionRow(const PhotosContext &context) : m_context(context)
{
    setFixedSize(344, 60);
    connect(&context.thumbnails, &Thumbnails::ready, this, [this](const ThumbnailKey &key) {
        if (key.of == ThumbnailKey::Of::Photo) {
            update();
        }
    });
}

void SessionRow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    double x = width() - 1;
    const QList<PhotoItem> &photos = m_context.model.photos();
    const QSize room = (QSizeF(80, 56) * devicePixelRatioF()).toSize();
    for (qsizetype i = std::min<qsizetype>(photos.size(), shownPhotos) - 1; i >= 0; --i) {
        const PhotoItem &photo = photos.at(i);
        const QSizeF tile = QSizeF(Thumbnails::canvasIn(room, photo)) / devicePixelRatioF();
        if (x - tile.width() < 0) {
            break;
        }
        const QRectF box(x - tile.width(), (height() - 56) / 2.0, tile.width(), 56);
        Paint::rounded(painter, box, 4, theme().surfaceMuted);
        const QImage image = m_context.thumbnails.image(ThumbnailKey::photo(photo), photo, room);
        if (!image.isNull()) {
            paintFramed(painter, image, box, false);
        }
        x = box.left() - 8;
    }
}

HomeScreen::HomeScreen(const PhotosContext &context, EditorState &state)
    : m_context(context),
      m_state(state),
      m_drop(makeDropCard()),
      m_recovery(new RecoveryCard(context, state)),
      m_continue(makeContinueCard()),
      m_privacy(makeHint(
          "lock", said({"照片均在本机处理。导出文件不含 GPS 信息，也没有应用水印。",
                        "Images are processed locally. Exports contain no GPS metadata or app watermark.",
                        "Images traitées localement. Les exports ne contiennent ni données GPS ni "
                        "filigrane."})))
{
    for (QWidget *part : {m_drop, static_cast<QWidget *>(m_recovery), m_continue, m_privacy}) {
        part->setParent(this);
    }
    connect(m_recovery, &RecoveryCard::restored, this, &HomeScreen::continueAsked);
    connect(&context.model, &EditorModel::changed, this, [this](EditorModel::Changes changes) {
        if (changes & EditorModel::PhotosChanged && isVisible()) {
            refresh();
        }
    });
    refresh();
}

QWidget *HomeScreen::makeDropCard()
{
    auto *card = new Card(true);
    auto *row = new QHBoxLayout(card);
    row->setContentsMargins(0, 8, 40, 8);
    row->setSpacing(0);
    m_samples = new SampleFrames;
    row->addWidget(m_samples);
    auto *column = new QVBoxLayout;
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(new Label(
        Type::Display, said({"把照片拖到这里", "Drop photos to frame them", "Déposez vos photos ici"})));
    column->addSpacing(12);
    auto *what = new Label(Type::Body,
                           said({"一次最多 50 张，一套统一的边框。\nJPEG、HEIC、PNG 等格式。",
                                 "Up to 50 photos, one consistent frame.\nJPEG, HEIC, PNG and more.",
                                 "Jusqu’à 50 photos, un cadre cohérent.\nJPEG, HEIC, PNG et d’autres."}),
                           Label::Tone::Secondary);
    QFont font = typeFont(Type::Body);
    font.setPixelSize(14);
    what->setFont(font);
    column->addWidget(what);
    column->addSpacing(24);
    m_add = new Button(Button::Kind::Primary, said({"添加照片", "Add photos", "Ajouter des photos"}), "plus");
    m_add->setHeight(40);
    m_add->setKeyHint(Wording::local(u"⌘O"_s));
    connect(m_add, &QPushButton::clicked, &m_state, &EditorState::addPhotosAsked);
    column->addWidget(m_add, 0, Qt::AlignLeft);
    column->addSpacing(16);
    m_autoApply = new Switch(said({"新照片使用上次的风格", "Apply last style to new photos",
                                   "Appliquer le dernier style aux nouvelles photos"}),
                             Switch::Side::TextRight);
    connect(m_autoApply, &Switch::toggledByUser, &m_context.model, &EditorModel::setAutoApplyLastStyle);
    column->addWidget(m_autoApply);
    column->addStretch();
    row->addLayout(column, 1);
    return card;
}

QWidget *HomeScreen::makeContinueCard()
{
    auto *card = new Card(false);
    auto *row = new QHBoxLayout(card);
    row->setContentsMargins(24, 0, 16, 0);
    row->setSpacing(16);
    auto *column = new QVBoxLayout;
    column->setSpacing(2);
    column->addStretch();
    column->addWidget(new Label(
        Type::Heading, said({"继续上次编辑", "Continue last edit", "Reprendre la dernière édition"})));
    m_summary = new Label(Type::Body, {}, Label::Tone::Secondary);
    column->addWidget(m_summary);
    column->addStretch();
    row->addLayout(column, 1);
    row->addWidget(new SessionRow(m_context));
    m_go = new Button(Button::Kind::Secondary, said({"继续", "Continue", "Reprendre"}));
    m_go->setObjectName(u"continueSession"_s);
    connect(m_go, &QPushButton::clicked, this, &HomeScreen::continueAsked);
    row->addWidget(m_go);
    return card;
}

void HomeScreen::takeKeyboard()
{
    if (!m_recovery->isHidden()) {
        m_recovery->focusDefault();
        return;
    }
    (m_continue->isHidden() ? m_add : m_go)->setFocus(Qt::OtherFocusReason);
}

QWidget *HomeScreen::addButton() const
{
    return m_add;
}

void HomeScreen::refresh()
{
    const qsizetype count = m_context.model.photos().size();
    m_continue->setVisible(count > 0);
    m_autoApply->show(m_context.model.autoApplyLastStyle());
    m_recovery->refresh();
    m_summary->setPhrase([count, edited = m_context.model.lastEdit()] {
        const QString photos = countedPhotos(count);
        return edited ? photos + u" · "_s + spokenTime(dateTime(*edited)) : photos;
    });
    place();
}

void HomeScreen::place()
{
    const int wide = std::min(dropCard.width(), width() - 2 * sideMargin);
    const bool kept = !m_recovery->isHidden();
    const int below = (kept ? cardGap + RecoveryCard::cardHeight : 0) +
                      (m_continue->isHidden() ? 0 : cardGap + continueHeight);
    const int room = height() - 56;
    const int highest = kept ? lowDropHeight : dropCard.height();
    const int drop = std::clamp(room - below - 2 * leastTop, leastDropHeight, highest);
    const int top =
        std::max(std::min(kept ? lowTopDistance : topDistance, (room - below - drop) / 2), leastTop);
    const int left = (width() - wide) / 2;
    m_samples->setVisible(drop >= leastSampleHeight);
    m_drop->layout()->setContentsMargins(m_samples->isHidden() ? 40 : 0, 8, 40, 8);
    m_drop->setGeometry(left, top, wide, drop);
    int next = top + drop + cardGap;
    if (kept) {
        m_recovery->setGeometry(left, next, wide, RecoveryCard::cardHeight);
        next += RecoveryCard::cardHeight + cardGap;
    }
    m_continue->setGeometry(left, next, wide, continueHeight);
    const auto *privacy = m_privacy->findChild<Label *>();
    const int wanted = privacy->fontMetrics().horizontalAdvance(privacy->text()) + 32;
    const int privacyWidth = std::min(wanted, width() - 2 * sideMargin);
    m_privacy->setGeometry((width() - privacyWidth) / 2, height() - 44, privacyWidth, 32);
}

void HomeScreen::resizeEvent(QResizeEvent *event)
{
    place();
    QWidget::resizeEvent(event);
}

void HomeScreen::showEvent(QShowEvent *event)
{
    refresh();
    QWidget::showEvent(event);
}

void HomeScreen::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
}

} // namespace tarnovel::app
