#include "app/export/SuccessSheet.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <QBoxLayout>
#include <QDir>
#include <QPainter>

#include "app/Sharing.h"
#include "app/Wording.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int sheetWidth = 720;
constexpr int thumbnailHeight = 152;
constexpr int thumbnailGap = 24;
constexpr int margin = 56;

class Check : public QWidget {
public:
    Check() { setFixedSize(40, 40); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 20, theme().selection);
        Icons::draw(painter, "check", {12, 12}, 16, theme().accent);
    }
};

class Thumbs : public QWidget {
public:
    explicit Thumbs(std::function<QList<QImage>()> images) : m_images(std::move(images))
    {
        setFixedHeight(thumbnailHeight + 56);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const QList<QImage> images = m_images();
        if (images.size() != m_scaled.size()) {
            scale(images);
        }
        QPainter painter(this);
        const double total = std::accumulate(
            m_scaled.begin(), m_scaled.end(), (double(m_scaled.size()) - 1) * thumbnailGap,
            [](double sum, const QImage &image) { return sum + image.deviceIndependentSize().width(); });
        double x = (width() - total) / 2;
        for (const QImage &image : m_scaled) {
            const QSizeF size = image.deviceIndependentSize();
            const QRectF box(x, 8 + (thumbnailHeight - size.height()) / 2, size.width(), size.height());
            drawShadow(painter, box, 0, Elevation::Frame);
            painter.drawImage(box, image);
            Paint::outline(painter, box, 0, theme().rim);
            x += size.width() + thumbnailGap;
        }
    }

private:
    void scale(const QList<QImage> &images)
    {
        m_scaled.clear();
        const double room = (width() - 3.0 * thumbnailGap) / 4;
        for (const QImage &image : images) {
            const QSizeF size =
                QSizeF(image.size())
                    .scaled(QSizeF(std::max(room, 80.0), thumbnailHeight), Qt::KeepAspectRatio);
            m_scaled.append(image.scaled((size * devicePixelRatioF()).toSize(), Qt::IgnoreAspectRatio,
                                         Qt::SmoothTransformation));
            m_scaled.last().setDevicePixelRatio(devicePixelRatioF());
        }
    }

    std::function<QList<QImage>()> m_images;
    QList<QImage> m_scaled;
};

/// A path as the user writes it.
QString shortPath(const QString &folder)
{
    const QString home = QDir::homePath();
    return folder.startsWith(home + u'/') ? u"~"_s + folder.mid(home.size()) : folder;
}

/// "Skipped: DSCF2711, DSCF2712 and 3 more".
QString skippedText(const QStringList &names)
{
    constexpr qsizetype mostNames = 4;
    const QString named = names.first(std::min(mostNames, names.size())).join(localized({"、", ", ", ", "}));
    const qsizetype more = names.size() - mostNames;
    return localized({"已跳过：", "Skipped: ", "Ignorées\u202f: "}) + named +
           (more > 0
                ? localized({" 等 %1 张", " and %1 more", " et %1 de plus"})
                      .replace(u"%1"_s, QString::number(
                                            currentLanguage() == AppLanguage::chinese ? names.size() : more))
                : QString());
}

Label *centred(Label *label)
{
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

QHBoxLayout *buttons(Overlay *sheet, const Success &success, std::function<void(const QString &)> said)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addStretch();
    auto *folder = new Button(
        Button::Kind::Secondary,
        [] {
            return Wording::local(localized({"在访达中显示", "Show in Finder", "Afficher dans le Finder"}));
        },
        "folder");
    QObject::connect(folder, &QPushButton::clicked, sheet,
                     [path = success.folder, files = success.files] { Sharing::showInFolder(path, files); });
    auto *copy = new Button(Button::Kind::Secondary,
                            app::said({"复制文件", "Copy files", "Copier les fichiers"}), "manage");
    copy->setObjectName(u"copyFiles"_s);
    QObject::connect(copy, &QPushButton::clicked, sheet, [files = success.files, said = std::move(said)] {
        Sharing::copyFiles(files);
        said(localized({"文件已复制，可粘贴到任何地方。", "Files copied. Paste them anywhere.",
                        "Fichiers copiés. Collez-les où vous voulez."}));
    });
    auto *done = new Button(Button::Kind::Primary, app::said({"完成", "Done", "Terminé"}));
    done->setObjectName(u"closeSheet"_s);
    QObject::connect(done, &QPushButton::clicked, sheet, &Overlay::close);
    QList<Button *> list = {folder, copy};
    auto *mail = new Button(Button::Kind::Secondary, app::said({"邮件…", "E-mail…", "E-mail…"}));
    QObject::connect(mail, &QPushButton::clicked, sheet,
                     [files = success.files] { Sharing::sendMail(files); });
    Sharing::askForMail(mail, [mail] { mail->show(); });
    list.append(mail);
    list.append(done);
    for (Button *button : list) {
        button->setHeight(40);
        row->addWidget(button);
    }
    row->addStretch();
    mail->hide();
    sheet->setDefaultButton(done);
    sheet->startOn(done);
    return row;
}

} // namespace

Overlay *showSuccess(QWidget *window, const Success &success, std::function<void(const QString &)> said)
{
    auto *sheet = new Overlay(Overlay::Kind::Sheet, window, success.heading);
    QVBoxLayout *column = sheet->column();
    column->setContentsMargins(margin, 40, margin, 40);
    column->addWidget(new Check, 0, Qt::AlignHCenter);
    column->addSpacing(12);
    column->addWidget(centred(new Label(Type::Display, success.heading)));
    column->addSpacing(4);
    auto *path = new Label(
        Type::Body, [text = shortPath(success.folder)] { return text; }, Label::Tone::Secondary);
    column->addWidget(centred(path));
    if (!success.skipped.isEmpty()) {
        column->addSpacing(8);
        column->addWidget(centred(new Label(
            Type::BodyStrong, [names = success.skipped] { return skippedText(names); },
            Label::Tone::Danger)));
    }
    column->addSpacing(28);
    column->addWidget(new Thumbs(success.thumbnails));
    if (success.quote) {
        const PhotographyQuote quote = *success.quote;
        column->addWidget(centred(new Label(Type::Quote, [quote] {
            return localized({"“", "“", "« "}) + quote.text(currentLanguage()) + localized({"”", "”", " »"});
        })));
        column->addSpacing(4);
        column->addWidget(centred(new Label(
            Type::Label, [quote] { return quote.author(currentLanguage()); }, Label::Tone::Secondary)));
    }
    if (success.hint) {
        column->addSpacing(16);
        column->addWidget(centred(new Label(Type::Label, success.hint, Label::Tone::Secondary)));
    }
    column->addSpacing(success.hint ? 12 : 32);
    column->addLayout(buttons(sheet, success, std::move(said)));
    sheet->setCardSize({sheetWidth, 0});
    sheet->open();
    return sheet;
}

} // namespace tarnovel::app
