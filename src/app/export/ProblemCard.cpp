#include "app/export/ProblemCard.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Switch.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize thumbnailRoom(56, 56);
constexpr int padding = 12;

} // namespace

/// The tinted ground with the photo's frame at its left.
class ProblemCard::Tint : public QWidget {
public:
    explicit Tint(Thumbnails &thumbnails) : m_thumbnails(thumbnails)
    {
        connect(&thumbnails, &Thumbnails::ready, this, qOverload<>(&QWidget::update));
        setMinimumHeight(thumbnailRoom.height() + 2 * padding);
    }

    void setPhoto(const PhotoItem &photo)
    {
        m_photo = photo;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QColor tint = theme().danger;
        tint.setAlphaF(0.08F);
        Paint::rounded(painter, rect(), 12, theme().surface);
        Paint::rounded(painter, rect(), 12, tint);
        const QSize room = (QSizeF(thumbnailRoom) * devicePixelRatioF()).toSize();
        const QSizeF tile = QSizeF(Thumbnails::canvasIn(room, m_photo)) / devicePixelRatioF();
        const QRectF box(padding + (thumbnailRoom.width() - tile.width()) / 2, (height() - tile.height()) / 2,
                         tile.width(), tile.height());
        const QImage image =
            m_thumbnails.image({ThumbnailKey::Of::Problem, m_photo.id.toString()}, m_photo, room);
        if (image.isNull()) {
            Paint::rounded(painter, box, 4, theme().surfaceMuted);
            Icons::draw(painter, "warn", box.center() - QPointF(10, 10), 20, theme().danger);
        } else {
            paintFramed(painter, image, box, false);
        }
    }

private:
    Thumbnails &m_thumbnails;
    PhotoItem m_photo;
};

ProblemCard::ProblemCard(Thumbnails &thumbnails)
    : m_tint(new Tint(thumbnails)),
      m_title(new Label(Type::BodyStrong, {}, Label::Tone::Danger)),
      m_reason(new Label(Type::Label, {})),
      m_alike(new Switch(
          said({"同类问题直接跳过", "Skip the like without asking", "Ignorer les cas semblables"}))),
      m_stop(new Button(Button::Kind::Secondary, said({"停止", "Stop", "Arrêter"}))),
      m_skip(
          new Button(Button::Kind::Primary, said({"跳过并继续", "Skip and go on", "Ignorer et continuer"}))),
      m_retry(new Button(Button::Kind::Primary, said({"重试", "Try again", "Réessayer"})))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    auto *texts = new QVBoxLayout(m_tint);
    texts->setContentsMargins(2 * padding + thumbnailRoom.width(), padding, padding, padding);
    texts->setSpacing(2);
    texts->addStretch();
    texts->addWidget(m_title);
    texts->addWidget(m_reason);
    texts->addStretch();
    column->addWidget(m_tint);
    column->addWidget(m_alike);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_stop);
    for (Button *button : {m_skip, m_retry}) {
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        row->addWidget(button, 1);
    }
    column->addLayout(row);
    m_stop->setObjectName(u"stopExport"_s);
    connect(m_stop, &QPushButton::clicked, this, &ProblemCard::stopAsked);
    connect(m_retry, &QPushButton::clicked, this, &ProblemCard::retryAsked);
    connect(m_skip, &QPushButton::clicked, this, [this] {
        Q_EMIT skipAsked(m_alike->isChecked() ? ExportRun::Skipping::AllAlike
                                              : ExportRun::Skipping::ThisPhoto);
    });
}

void ProblemCard::show(const ExportProblem &problem)
{
    m_tint->setPhoto(problem.photo);
    m_title->setPhrase([name = problem.photo.name] {
        return localized({"%1 没有写出", "%1 was not written", "%1 n’a pas été écrit"})
            .replace(u"%1"_s, name);
    });
    m_reason->setPhrase([cause = problem.cause] { return QString(cause); });
    // Where the disk is in the way, the next photo would meet the same.
    m_alike->setVisible(!problem.worthRetrying);
    m_skip->setVisible(!problem.worthRetrying);
    m_retry->setVisible(problem.worthRetrying);
    if (isHidden()) {
        m_alike->show(false);
        QWidget::show();
        m_title->setAccessibleName(m_title->text() + u". "_s + m_reason->text());
        QAccessibleEvent alert(m_title, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ProblemCard::focusDefault()
{
    (m_retry->isHidden() ? m_skip : m_retry)->setFocus();
}

} // namespace tarnovel::app
