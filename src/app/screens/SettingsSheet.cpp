#include "app/screens/SettingsSheet.h"

#include <array>
#include <utility>

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QSysInfo>

#include "app/Wording.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Icons.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/ScrollArea.h"
#include "app/kit/Segments.h"
#include "app/kit/Switch.h"
#include "app/kit/Theme.h"
#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize sheetSize(1000, 688);
constexpr int settingsWidth = 392;
constexpr int inset = 32;

QString systemLanguageName()
{
    const QStringList system = systemLanguagesFromEnvironment();
    const QString first = system.isEmpty() ? u"en"_s : system.first();
    return first.startsWith(u"zh"_s) ? u"中文"_s : first.startsWith(u"fr"_s) ? u"Français"_s : u"English"_s;
}

/// Small windows that show the three appearances.
class AppearanceTiles : public ItemView {
public:
    AppearanceTiles() : ItemView(Arrows::Choose) { setFixedHeight(96); }

    int count() const override { return 3; }
    QRect itemRect(int index) const override
    {
        const int tile = (width() - 2 * 12) / 3;
        return {4 + index * (tile + 10), 4, tile - 4, 90};
    }
    QString itemName(int index) const override
    {
        static constexpr std::array<Text, 3> names = {
            {{"跟随系统", "System", "Système"}, {"浅色", "Light", "Clair"}, {"深色", "Dark", "Sombre"}}};
        return localized(names.at(static_cast<size_t>(index)));
    }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override
    {
        const QRect box = itemRect(index).adjusted(0, 0, 0, -26);
        painter.save();
        QPainterPath corners;
        corners.addRoundedRect(box, 8, 8);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipPath(corners);
        if (index == 0) {
            const QRect left(box.topLeft(), QSize(box.width() / 2, box.height()));
            paintWindow(painter, left, Theme::light());
            paintWindow(painter, left.translated(left.width(), 0).adjusted(0, 0, 1, 0), Theme::darkness());
        } else {
            paintWindow(painter, box, index == 1 ? Theme::light() : Theme::darkness());
        }
        painter.restore();
        Paint::outline(painter, box, 8, theme().hairline);
        if (state.chosen || state.focused) {
            Paint::outline(painter, QRectF(box).adjusted(-4, -4, 4, 4), 12, theme().accent,
                           state.chosen ? 2 : 1);
        }
        if (state.chosen && state.focused) {
            Paint::outline(painter, QRectF(box).adjusted(1, 1, -1, -1), 7, theme().accent, 1.5);
        }
        painter.setFont(typeFont(state.chosen ? Type::CaptionStrong : Type::Caption));
        painter.setPen(state.chosen ? theme().ink : theme().inkSecondary);
        painter.drawText(QRect(box.left(), box.bottom() + 8, box.width(), 18), Qt::AlignCenter,
                         itemName(index));
    }

private:
    static void paintWindow(QPainter &painter, const QRect &box, const Theme &look)
    {
        painter.fillRect(box, look.canvas);
        const int panel = box.width() * 2 / 5;
        painter.fillRect(QRect(box.right() - panel + 1, box.top(), panel, box.height()), look.surface);
        const QRectF frame(box.left() + (box.width() - panel) / 2.0 - 9, box.center().y() - 13, 18, 27);
        painter.fillRect(frame, look.dark ? look.surfaceMuted : look.surface);
        Paint::outline(painter, frame, 0, look.dark ? look.hairline : look.controlLine);
    }
};

class GuideIcon : public QWidget {
public:
    explicit GuideIcon(const char *icon) : m_icon(icon) { setFixedSize(36, 36); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        Paint::rounded(painter, rect(), 8, theme().surfaceMuted);
        Icons::draw(painter, m_icon, {8, 8}, 20, theme().accent);
    }

private:
    const char *m_icon;
};

class SettingsPane : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QPainterPath left;
        left.addRoundedRect(QRectF(rect()).adjusted(1, 1, 20, -1), 15, 15);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipRect(rect());
        painter.fillPath(left, theme().canvas);
        Paint::hairline(painter, QPointF(width() - 1, 0), QPointF(width() - 1, height()));
    }
};

/// What a report of a fault needs: versions, platform, and the log's last lines.
QString aboutText()
{
    QStringList lines = {u"Tarnovel "_s + QStringLiteral(TARNOVEL_VERSION),
                         u"Qt "_s + QString::fromLatin1(qVersion()) + u", "_s +
                             QGuiApplication::platformName(),
                         QSysInfo::prettyProductName() + u", "_s + QSysInfo::currentCpuArchitecture()};
    return (lines + lastLogLines()).join(u'\n');
}

QWidget *makeAbout(const EditorContext &context)
{
    auto *about = new QWidget;
    auto *row = new QHBoxLayout(about);
    row->setContentsMargins(0, 0, 0, 0);
    auto *lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(new Label(
        Type::Label, [] { return u"Tarnovel "_s + QStringLiteral(TARNOVEL_VERSION); },
        Label::Tone::Secondary));
    auto *licence = new Label(Type::Label,
                              said({"自由软件：GPL-3.0-or-later", "Free software: GPL-3.0-or-later",
                                    "Logiciel libre\u202f: GPL-3.0-or-later"}),
                              Label::Tone::Secondary);
    licence->setObjectName(u"licence"_s);
    lines->addWidget(licence);
    row->addLayout(lines, 1);
    auto *copy = new Button(Button::Kind::Ghost, said({"复制详情", "Copy details", "Copier les détails"}));
    copy->setObjectName(u"copyDetails"_s);
    copy->setHint(
        said({"版本、系统和最近的日志，用于反馈问题", "Versions, system and the last log lines, for a report",
              "Versions, système et dernières lignes du journal, pour un rapport"}));
    copy->setHeight(28);
    QObject::connect(copy, &QPushButton::clicked, copy, [&state = context.state] {
        QGuiApplication::clipboard()->setText(aboutText());
        state.say(localized({"详情已复制。", "Details copied.", "Détails copiés."}), Toast::Kind::Done);
    });
    row->addWidget(copy);
    return about;
}

QWidget *makeSettings(const EditorContext &context, Appearance &appearance,
                      std::function<void()> languageChanged)
{
    auto *pane = new SettingsPane;
    pane->setFixedWidth(settingsWidth);
    auto *column = new QVBoxLayout(pane);
    column->setContentsMargins(inset, 28, inset, 24);
    column->setSpacing(8);
    column->addWidget(new Label(Type::Title, said({"设置", "Settings", "Réglages"})));
    column->addSpacing(16);
    column->addWidget(new Label(Type::BodyStrong, said({"语言", "Language", "Langue"})));
    auto *language = new Segments({said({"系统", "System", "Système"}), [] { return u"中文"_s; },
                                   [] { return u"English"_s; }, [] { return u"Français"_s; }});
    language->setName(said({"语言", "Language", "Langue"}));
    const std::optional<AppLanguage> stored =
        languageFromName(context.preferences.get(PreferenceKeys::language).toString());
    language->setCurrent(stored ? static_cast<int>(*stored) + 1 : 0);
    language->setObjectName(u"language"_s);
    column->addWidget(language);
    auto *which = new Label(
        Type::Label,
        [] {
            return localized({"系统语言：", "System language: ", "Langue du système : "}) +
                   systemLanguageName();
        },
        Label::Tone::Secondary);
    column->addWidget(which);
    column->addSpacing(16);
    column->addWidget(new Label(Type::BodyStrong, said({"外观", "Appearance", "Apparence"})));
    auto *tiles = new AppearanceTiles;
    tiles->setName(said({"外观", "Appearance", "Apparence"}));
    tiles->setCurrent(static_cast<int>(appearance.choice()));
    tiles->setObjectName(u"appearance"_s);
    column->addWidget(tiles);
    column->addWidget(makeRule());
    auto *autoApply = new Switch(said({"新照片使用上次的风格", "Apply last style to new photos",
                                       "Appliquer le dernier style aux nouvelles photos"}));
    autoApply->show(context.model.autoApplyLastStyle());
    autoApply->setObjectName(u"autoApplyStyle"_s);
    column->addWidget(autoApply);
    column->addWidget(new Label(
        Type::Label,
        said({"编辑中添加的照片会使用当前风格。", "Photos added while editing take the current style.",
              "Les photos ajoutées prennent le style actuel."}),
        Label::Tone::Secondary));
    column->addWidget(makeRule());
    column->addWidget(
        makeHint("lock", said({"照片均在本机处理。导出文件不含 GPS 信息，也没有应用水印。",
                               "Images are processed locally. Exports contain no GPS metadata or app "
                               "watermark.",
                               "Images traitées localement. Les exports ne contiennent ni données GPS ni "
                               "filigrane."})));
    column->addStretch();
    column->addWidget(makeAbout(context));
    QObject::connect(
        language, &ItemView::chosen, pane,
        [&preferences = context.preferences, languageChanged = std::move(languageChanged)](int index) {
            const std::optional<AppLanguage> chosen =
                index == 0 ? std::nullopt : std::optional(static_cast<AppLanguage>(index - 1));
            preferences.set(PreferenceKeys::language, {languageName(chosen)});
            languageChanged();
        });
    QObject::connect(tiles, &ItemView::chosen, &appearance,
                     [&appearance](int index) { appearance.choose(static_cast<AppearanceChoice>(index)); });
    QObject::connect(autoApply, &Switch::toggledByUser, &context.model, &EditorModel::setAutoApplyLastStyle);
    return pane;
}

void addGuideRow(QVBoxLayout *column, const char *icon, Phrase title, Phrase text)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(new GuideIcon(icon), 0, Qt::AlignTop);
    auto *lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addStretch();
    if (title) {
        lines->addWidget(new Label(Type::BodyStrong, std::move(title)));
    }
    lines->addWidget(new Label(Type::Body, std::move(text), Label::Tone::Secondary));
    lines->addStretch();
    row->addLayout(lines, 1);
    column->addLayout(row);
    column->addSpacing(14);
}

void addGuideTexts(QVBoxLayout *column)
{
    const auto heading = [column](const Text &text) {
        column->addSpacing(6);
        column->addWidget(new Label(Type::BodyStrong, said(text)));
        column->addSpacing(10);
    };
    heading({"快速上手", "Getting started", "Premiers pas"});
    addGuideRow(column, "plus", said({"选择照片", "Choose photos", "Choisir des photos"}), [] {
        return Wording::local(
            localized({"一次最多 50 张。拖到窗口上，或按 ⌘O。",
                       "Up to 50 photos per session. Drop them on the window or press ⌘O.",
                       "50 photos maximum par session. Déposez-les sur la fenêtre ou appuyez sur ⌘O."}));
    });
    addGuideRow(column, "templates", said({"选择模板", "Choose a template", "Choisir un modèle"}),
                said({"先选一个构图，再在调整中完善。", "Start with a composition, then refine it in Adjust.",
                      "Partez d’une composition, puis affinez-la dans Ajuster."}));
    addGuideRow(column, "canvas", said({"调整边框", "Adjust the frame", "Ajuster le cadre"}),
                said({"编辑画布、背景、留白、位置、文字和徽标。",
                      "Edit the canvas, background, whitespace, placement, text, and logo.",
                      "Modifiez le format, le fond, les marges, la position, le texte et le logo."}));
    addGuideRow(
        column, "export", said({"导出", "Export", "Exporter"}),
        said({"导出到文件夹或“图片”，JPEG 或 PNG。", "Export to a folder or to Pictures, as JPEG or PNG.",
              "Exportez vers un dossier ou vers Images, en JPEG ou en PNG."}));
    heading({"实用手势", "Helpful gestures", "Gestes utiles"});
    addGuideRow(column, "hand", {},
                said({"在画布上拖动照片可移动，双指捏合可缩放。",
                      "Drag a photo on the canvas to move it, and pinch to resize.",
                      "Glissez une photo pour la déplacer, pincez pour la redimensionner."}));
    addGuideRow(column, "text", {},
                said({"双击可见的文字，打开编辑器。", "Double-tap visible text to open its editor.",
                      "Touchez deux fois un texte visible pour l’éditer."}));
    addGuideRow(column, "manage", {},
                said({"“应用到全部”会复制当前风格，并保留每张照片的相机信息。",
                      "Apply to All copies the current style while keeping each photo’s camera information.",
                      "Appliquer à tout copie le style actuel et conserve les infos de chaque photo."}));
    heading({"我的风格", "My style", "Mon style"});
    addGuideRow(column, "styles", {},
                said({"长按风格卡片可删除。", "Long-press a style card to delete it.",
                      "Appuyez longuement sur une carte de style pour la supprimer."}));
}

QWidget *makeGuide(Overlay *sheet)
{
    auto *pane = new QWidget;
    auto *column = new QVBoxLayout(pane);
    column->setContentsMargins(40, 24, 24, 24);
    column->setSpacing(0);
    auto *head = new QHBoxLayout;
    head->addWidget(
        new Label(Type::Title, said({"如何使用 Tarnovel", "How to use Tarnovel", "Utiliser Tarnovel"})), 1);
    auto *close =
        new Button(Button::Kind::Ghost, said({"关闭", "Close", "Fermer"}), "close", Button::Face::IconOnly);
    QObject::connect(close, &QPushButton::clicked, sheet, &Overlay::close);
    sheet->setDefaultButton(close);
    sheet->startOn(close);
    head->addWidget(close);
    column->addLayout(head);
    column->addSpacing(16);
    auto *texts = new QWidget;
    auto *inside = new QVBoxLayout(texts);
    inside->setContentsMargins(0, 0, 16, 0);
    inside->setSpacing(0);
    addGuideTexts(inside);
    inside->addStretch();
    auto *area = new ScrollArea;
    area->hold(texts);
    column->addWidget(area, 1);
    column->addSpacing(12);
    column->addWidget(
        makeHint("lock", said({"照片只在本机处理，绝不上传。",
                               "Photos are processed only on this device and are never uploaded.",
                               "Les photos sont traitées uniquement sur cet appareil et ne sont jamais "
                               "envoyées."})));
    return pane;
}

} // namespace

Overlay *showSettings(QWidget *window, const EditorContext &context, Appearance &appearance,
                      std::function<void()> languageChanged)
{
    auto *sheet = new Overlay(Overlay::Kind::Sheet, window,
                              said({"设置与指南", "Settings and guide", "Réglages et guide"}));
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(makeSettings(context, appearance, std::move(languageChanged)));
    row->addWidget(makeGuide(sheet), 1);
    sheet->column()->addLayout(row);
    sheet->setCardSize(sheetSize);
    sheet->open();
    return sheet;
}

} // namespace tarnovel::app
