#include "app/window/FilmStrip.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int stripHeight = 120;
constexpr int sideInset = 24;

} // namespace

FilmStrip::FilmStrip(const PhotosContext &context, EditorState &state)
    : m_context(context),
      m_state(state),
      m_name(new Label(Type::BodyStrong, {})),
      m_place(new Label(Type::Body, {}, Label::Tone::Secondary)),
      m_view(new StripView(context, state)),
      m_remove(new Button(Button::Kind::Ghost,
                          said({"移除这张照片", "Remove this photo", "Retirer cette photo"}), "trash",
                          Button::Face::IconOnly))
{
    setFixedHeight(stripHeight);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 7, 0, 0);
    column->setSpacing(5);
    auto *header = new QHBoxLayout;
    header->setContentsMargins(sideInset, 0, 14, 0);
    header->setSpacing(8);
    for (Label *label : {m_name, m_place}) {
        QFont font = typeFont(Type::Label);
        font.setWeight(label == m_name ? QFont::DemiBold : QFont::Normal);
        label->setFont(font);
        label->setWordWrap(false);
        header->addWidget(label);
    }
    header->addStretch();
    auto *preview =
        new Button(Button::Kind::Ghost, said({"套图预览", "Preview set", "Aperçu de la série"}), "grid");
    preview->setHint(
        said({"像帖子一样预览整组照片，拖动可排序", "Preview the set like a post and drag to reorder",
              "Prévisualiser la série comme un post et la réordonner"}));
    auto *manage = new Button(Button::Kind::Ghost, said({"管理", "Manage", "Gérer"}), "manage");
    m_remove->setKeyHint(localized({"Delete", "Delete", "Suppr"}));
    for (Button *button : {preview, manage, m_remove}) {
        button->setHeight(28);
        button->setIconSizePx(16);
        button->setFont(typeFont(Type::Label));
        header->addWidget(button);
    }
    preview->setObjectName(u"previewSet"_s);
    manage->setObjectName(u"managePhotos"_s);
    column->addLayout(header);
    column->addWidget(m_view);
    column->addStretch();
    connect(preview, &QPushButton::clicked, this, &FilmStrip::previewSetAsked);
    connect(manage, &QPushButton::clicked, this, &FilmStrip::manageAsked);
    connect(m_remove, &QPushButton::clicked, &state, &EditorState::removeAsked);
    connect(&context.model, &EditorModel::changed, this, &FilmStrip::showPhoto);
    showPhoto();
}

QWidget *FilmStrip::removeButton() const
{
    return m_remove;
}

void FilmStrip::showPhoto()
{
    const PhotoItem *photo = m_context.model.current();
    const qsizetype count = m_context.model.photos().size();
    const qsizetype index = photo ? photo - m_context.model.photos().constData() : -1;
    m_name->setPhrase([this, name = photo ? photo->name : QString()] {
        return m_name->fontMetrics().elidedText(name, Qt::ElideMiddle, 280);
    });
    m_place->setPhrase([index, count] {
        return index < 0 ? QString()
                         : localized({"第 ", "", ""}) + QString::number(index + 1) +
                               localized({" 张，共 ", " of ", " sur "}) + QString::number(count) +
                               localized({" 张", "", ""});
    });
    m_remove->setEnabled(photo);
}

void FilmStrip::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_remove->setKeyHint(localized({"Delete", "Delete", "Suppr"}));
        showPhoto();
    }
    QWidget::changeEvent(event);
}

void FilmStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, 0), QPointF(width(), 0));
}

} // namespace tarnovel::app
