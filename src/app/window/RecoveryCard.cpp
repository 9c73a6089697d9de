#include "app/window/RecoveryCard.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>

#include "app/Sharing.h"
#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/Theme.h"
#include "language/Plural.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int frameHeight = 48;
constexpr int iconTile = 40;
constexpr int inset = 24;

QString countedStyles(qsizetype count)
{
    return counted(count, {"%1 个风格", "%1 style", "%1 style"}, {"%1 个风格", "%1 styles", "%1 styles"});
}

/// "12 photos and 2 styles", without what there is none of.
QString photosAndStyles(qsizetype photos, qsizetype styles)
{
    return photos == 0   ? countedStyles(styles)
           : styles == 0 ? countedPhotos(photos)
                         : countedPhotos(photos) + localized({"和", " and ", " et "}) + countedStyles(styles);
}

/// What can be brought back, and what cannot.
QString summaryOf(const SalvagedSession &found)
{
    const qsizetype photos = found.session.photos.size();
    const qsizetype styles = found.session.presets.size();
    QStringList parts;
    if (photos + styles > 0) {
        parts.append(localized({"可以恢复%1。", "%1 can be brought back.", "À récupérer\u202f: %1."})
                         .replace(u"%1"_s, photosAndStyles(photos, styles)));
    } else if (found.known > 0) {
        parts.append(localized({"能读取的内容都已恢复。", "What can be read of it is back in your session.",
                                "Ce qui est lisible est de retour dans votre session."}));
    } else {
        parts.append(localized(
            {"没有可以恢复的内容。", "Nothing in it can be brought back.", "Rien ne peut être récupéré."}));
    }
    if (found.lostPhotos + found.lostPresets > 0) {
        parts.append(localized({"%1无法恢复。", "Lost: %1.", "Perdu\u202f: %1."})
                         .replace(u"%1"_s, photosAndStyles(found.lostPhotos, found.lostPresets)));
    } else if (found.cutShort && photos + styles > 0) {
        parts.append(
            localized({"之后的内容无法读取。", "What follows cannot be read.", "La suite est illisible."}));
    }
    if (found.changed > 0 && photos + styles > 0) {
        parts.append(localized({"部分设置恢复为默认值。", "Some settings go back to their defaults.",
                                "Certains réglages reprennent leurs valeurs par défaut."}));
    }
    return parts.join(u' ');
}

/// What has come back, and whether that is all.
QString outcomeOf(const EditorModel::Restored &result, const SalvagedSession &found)
{
    QStringList parts;
    if (result.photos + result.presets > 0) {
        parts.append(localized({"已恢复%1。", "Brought back: %1.", "Récupéré\u202f: %1."})
                         .replace(u"%1"_s, photosAndStyles(result.photos, result.presets)));
    }
    if (result.truncated) {
        parts.append(
            localized({"一次最多编辑 50 张，文件已保留。", "A session holds 50 photos; the file is kept.",
                       "Une session contient 50 photos\u202f; le fichier est conservé."}));
    } else if (found.lostPhotos + found.lostPresets > 0 || found.cutShort) {
        parts.append(localized({"其余无法读取，文件已保留。", "The rest could not be read; the file is kept.",
                                "Le reste est illisible\u202f; le fichier est conservé."}));
    } else if (found.changed > 0) {
        parts.append(localized(
            {"部分设置已恢复为默认值，文件已保留。", "Some settings have their defaults; the file is kept.",
             "Certains réglages ont leurs valeurs par défaut\u202f; le fichier est conservé."}));
    }
    return parts.join(u' ');
}

} // namespace

/// The photos that can be brought back, in their frames.
class RecoveryCard::Frames : public QWidget {
public:
    explicit Frames(const PhotosContext &context) : m_context(context)
    {
        setFixedHeight(frameHeight);
        connect(&context.thumbnails, &Thumbnails::ready, this, qOverload<>(&QWidget::update));
    }

    void setPhotos(const QList<PhotoItem> &photos)
    {
        m_photos = photos;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        double x = 0;
        const QSize room = (QSizeF(72, frameHeight) * devicePixelRatioF()).toSize();
        for (const PhotoItem &photo : std::as_const(m_photos)) {
            const QSizeF tile = QSizeF(Thumbnails::canvasIn(room, photo)) / devicePixelRatioF();
            if (x + tile.width() > width()) {
                break;
            }
            const QRectF box =
                QRectF(x, (height() - tile.height()) / 2, tile.width(), tile.height()).toAlignedRect();
            const QImage image =
                m_context.thumbnails.image({ThumbnailKey::Of::SetAside, photo.id.toString()}, photo, room);
            if (image.isNull()) {
                Paint::rounded(painter, box, 4, theme().surfaceMuted);
            } else {
                paintFramed(painter, image, box, false);
            }
            x = box.right() + 8;
        }
    }

private:
    PhotosContext m_context;
    QList<PhotoItem> m_photos;
};

RecoveryCard::RecoveryCard(const PhotosContext &context, EditorState &state)
    : m_context(context),
      m_state(state),
      m_summary(new Label(Type::Body, {}, Label::Tone::Secondary)),
      m_file(new Label(Type::Label, {}, Label::Tone::Secondary)),
      m_frames(new Frames(context)),
      m_discard(new Button(Button::Kind::Ghost, said({"放弃…", "Discard…", "Abandonner…"}))),
      m_show(new Button(Button::Kind::Secondary, said({"显示文件", "Show file", "Afficher le fichier"}),
                        "folder")),
      m_restore(new Button(Button::Kind::Primary, said({"恢复", "Restore", "Restaurer"})))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(inset, 20, inset, 16);
    column->setSpacing(4);
    auto *texts = new QVBoxLayout;
    texts->setContentsMargins(iconTile + 16, 0, 0, 0);
    texts->setSpacing(2);
    texts->addWidget(new Label(
        Type::Heading,
        said({"上次的编辑无法读取，文件已保留。", "Your last session could not be read. It is kept.",
              "La dernière session est illisible. Elle est conservée."})));
    texts->addWidget(m_summary);
    texts->addSpacing(6);
    texts->addWidget(m_frames);
    column->addLayout(texts);
    column->addStretch();
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_file->setWordWrap(false);
    row->addWidget(m_file, 1);
    for (Button *button : {m_discard, m_show, m_restore}) {
        row->addWidget(button);
    }
    column->addLayout(row);
    connect(m_restore, &QPushButton::clicked, this, &RecoveryCard::restore);
    connect(m_discard, &QPushButton::clicked, this, &RecoveryCard::askDiscard);
    connect(m_show, &QPushButton::clicked, this, [this] {
        if (offered()) {
            const QString path = m_context.model.setAside().first().path;
            Sharing::showInFolder(QFileInfo(path).absolutePath(), {path});
        }
    });
    refresh();
}

void RecoveryCard::refresh()
{
    if (!offered()) {
        m_shown.clear();
        hide();
        return;
    }
    const SetAsideSession &document = m_context.model.setAside().first();
    const bool appears = m_shown != document.path;
    m_shown = document.path;
    m_found = m_context.model.restorable(document);
    m_summary->setPhrase([found = m_found] { return summaryOf(found); });
    m_file->setPhrase([name = QFileInfo(document.path).fileName(), bytes = document.bytes] {
        return name + u" · "_s + QLocale::c().formattedDataSize(bytes, 0, QLocale::DataSizeSIFormat);
    });
    m_frames->setPhotos(m_found.session.photos);
    const bool some = !m_found.session.photos.isEmpty() || !m_found.session.presets.isEmpty();
    m_restore->setEnabled(some);
    show();
    if (appears) {
        setAccessibleName(m_summary->text());
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void RecoveryCard::focusDefault()
{
    (m_restore->isEnabled() ? m_restore : m_show)->setFocus(Qt::OtherFocusReason);
}

void RecoveryCard::restore()
{
    if (!offered()) {
        return;
    }
    const EditorModel::Restored result = m_context.model.restore(m_context.model.setAside().first());
    m_state.say(outcomeOf(result, m_found), result.complete ? Toast::Kind::Done : Toast::Kind::Plain);
    refresh();
    if (result.photos > 0) {
        Q_EMIT restored();
    }
}

void RecoveryCard::askDiscard()
{
    ask(m_discard,
        {said({"放弃这次编辑？", "Discard this session?", "Abandonner cette session\u202f?"}),
         said({"它的照片副本和风格会被删除，原照片仍在原文件夹中。",
               "Its copies of photos and its styles are deleted. The originals stay in their folders.",
               "Ses copies de photos et ses styles seront supprimés. Les originaux restent dans leurs "
               "dossiers."}),
         said({"放弃", "Discard", "Abandonner"})},
        [this] {
            if (offered()) {
                m_context.model.discard(m_context.model.setAside().first());
            }
        });
}

void RecoveryCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Paint::rounded(painter, rect(), 16, theme().surface);
    Paint::outline(painter, QRectF(rect()), 16, theme().danger, 1.5);
    QColor tint = theme().danger;
    tint.setAlphaF(theme().dark ? 0.12F : 0.08F);
    Paint::rounded(painter, QRectF(inset, 20, iconTile, iconTile), 8, tint);
    Icons::draw(painter, "warn", QPointF(inset + 10, 30), 20, theme().danger);
    const int y = m_restore->geometry().top() - 14;
    Paint::hairline(painter, QPointF(inset, y), QPointF(width() - inset, y));
}

} // namespace tarnovel::app
