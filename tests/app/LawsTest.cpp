// What holds of every screen: at every size nothing is cut, out of sight or on top of another, and a screen
// reader finds a role, a name and a value for everything that can be done.

#include <map>

#include <QLabel>
#include <QScrollArea>

#include "app/canvas/CanvasView.h"
#include "app/collage/CollageScreen.h"
#include "app/export/SuccessSheet.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/inspector/ColorDots.h"
#include "app/kit/Accessible.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Motion.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "collage/CollageStudio.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

class Laws : public WindowTest {
protected:
    struct Screen {
        QString name;
        std::function<void()> show;
    };

    void SetUp() override
    {
        Motion::setReduced(true);
        WindowTest::SetUp();
        window().setMinimumSize(900, 600);
        showPhotos(4);
        FrameSettings full = settings();
        for (const char *id : {"title", "caption", "brand"}) {
            full.layer(QString::fromLatin1(id))->text = u"Words"_s;
            full.layer(QString::fromLatin1(id))->visible = true;
        }
        full.handwritingFile = model().current()->file;
        full.layer(u"watermark"_s)->imageFile = model().current()->file;
        full.layer(u"watermark"_s)->imageAspect = 1.5;
        model().update(full);
        ASSERT_TRUE(model().savePreset(u"Papier d’automne"_s));
    }

    void TearDown() override
    {
        setLanguageSources({[] { return u"english"_s; }, [] { return QStringList(); }});
    }

    QList<Screen> screens()
    {
        QList<Screen> all;
        for (const ToolRow &row : toolRows) {
            all.append({QString::fromLatin1(row.id), [this, tool = row.tool] {
                            window().showEditor();
                            window().state().setTool(tool);
                            page().showDrawer(true);
                        }});
        }
        all.append({u"film of the film"_s, [this] {
                        FrameSettings film = settings();
                        film.style = FrameStyle::film;
                        film.film = FilmOptions();
                        model().update(film);
                        window().state().setTool(Tool::Film);
                    }});
        all.append({u"export"_s, [this] { page().showExport(true); }});
        all.append({u"home"_s, [this] {
                        page().showExport(false);
                        page().showHome();
                    }});
        all.append({u"manage"_s, [this] {
                        window().showEditor();
                        window().showManage();
                    }});
        all.append({u"set preview"_s, [this] { window().showSetPreview(); }});
        all.append({u"collage chooser"_s, [this] { window().showCollage(); }});
        all.append({u"collage board"_s, [this] {
                        CollageStudio &studio = *window().collage()->studio();
                        studio.clearPicked();
                        for (const PhotoItem &photo : model().photos()) {
                            studio.toggle(photo.id);
                        }
                        studio.start();
                        studio.select(1);
                    }});
        all.append({u"handwriting"_s, [this] {
                        window().showEditor();
                        window().showHandwriting();
                    }});
        all.append({u"settings"_s, [this] {
                        window().showEditor();
                        window().showSettings();
                    }});
        all.append({u"remove"_s, [this] { Q_EMIT window().state().removeAsked(); }});
        all.append({u"save style"_s, [this] { Q_EMIT window().state().saveStyleAsked(); }});
        all.append({u"text on the picture"_s, [this] { Q_EMIT page().canvas()->editTextAsked(u"title"_s); }});
        all.append({u"any color"_s, [this] {
                        window().state().setTool(Tool::Border);
                        page().showDrawer(true);
                        auto *dots = page().panel()->findChild<ColorDots *>();
                        Q_EMIT dots->wheelChosen();
                    }});
        all.append({u"success"_s, [this] {
                        Success success;
                        success.heading = said({"36 张已导出", "36 photos exported", "36 photos exportées"});
                        success.folder = u"/home/someone/Pictures/A folder with a long name"_s;
                        success.skipped = {u"DSCF2711"_s, u"DSCF2712"_s};
                        success.thumbnails = [] {
                            return QList<QImage>(4, QImage(300, 400, QImage::Format_RGB32));
                        };
                        success.quote = PhotographyQuotes::all().front();
                        showSuccess(&window(), success, [](const QString &) {});
                    }});
        return all;
    }

    void speak(const QString &language)
    {
        setLanguageSources({[language] { return language; }, [] { return QStringList(); }});
        window().retranslate();
    }

    void closeOverlays()
    {
        for (Overlay *overlay : window().findChildren<Overlay *>()) {
            overlay->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static void layOut()
    {
        for (int i = 0; i < 4; ++i) {
            QCoreApplication::processEvents();
        }
    }

    /// Widgets that show something of their own or take the keyboard.
    QList<QWidget *> controls()
    {
        QList<QWidget *> result;
        for (QWidget *widget : window().findChildren<QWidget *>()) {
            const bool shows = qobject_cast<Label *>(widget) || widget->focusPolicy() & Qt::TabFocus;
            if (shows && widget->isVisible() && !covered(widget)) {
                result.append(widget);
            }
        }
        return result;
    }

    /// Whether a sheet lies over it.
    bool covered(const QWidget *widget)
    {
        for (const Overlay *overlay : window().findChildren<Overlay *>()) {
            if (overlay->isVisible() && !overlay->isAncestorOf(widget)) {
                return true;
            }
        }
        return false;
    }

    /// Notes and tools lie over the pages that one works on.
    static bool isGround(const QWidget *widget)
    {
        const auto role = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget))->role();
        return role == QAccessible::Canvas || role == QAccessible::Graphic;
    }

    static const QScrollArea *areaOf(const QWidget *widget)
    {
        for (const QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget()) {
            if (const auto *area = qobject_cast<const QScrollArea *>(parent)) {
                return area;
            }
        }
        return nullptr;
    }

    QRect inWindow(const QWidget *widget) { return {widget->mapTo(&window(), QPoint()), widget->size()}; }

    std::string nameOf(const QWidget *widget)
    {
        const auto *label = qobject_cast<const QLabel *>(widget);
        return (QString::fromLatin1(widget->metaObject()->className()) + u" “"_s +
                (label ? label->text() : widget->accessibleName()) + u"” "_s + widget->objectName())
            .toStdString();
    }

    void checkPlaces()
    {
        const QList<QWidget *> all = controls();
        for (QWidget *widget : all) {
            const QScrollArea *area = areaOf(widget);
            const QRect room =
                area ? QRect(area->viewport()->mapTo(&window(), QPoint()), area->viewport()->size())
                     : window().rect();
            const QRect place = inWindow(widget);
            // What scrolls may be below; nothing scrolls sideways.
            EXPECT_GE(place.left(), room.left()) << nameOf(widget);
            EXPECT_LE(place.right(), room.right()) << nameOf(widget);
            EXPECT_TRUE(area || (place.top() >= 0 && place.bottom() <= room.bottom())) << nameOf(widget);
            const QSize least = widget->minimumSizeHint();
            EXPECT_GE(place.width(), least.width()) << "cut: " << nameOf(widget);
            const int height =
                widget->hasHeightForWidth() ? widget->heightForWidth(place.width()) : least.height();
            EXPECT_GE(place.height(), height) << "cut: " << nameOf(widget);
            for (const QWidget *other : all) {
                if (other == widget || isGround(other) || isGround(widget) || other->isAncestorOf(widget) ||
                    widget->isAncestorOf(other) || areaOf(other) != area) {
                    continue;
                }
                EXPECT_FALSE(inWindow(other).intersects(place))
                    << nameOf(widget) << " lies on " << nameOf(other);
            }
        }
    }
};

TEST_F(Laws, NothingIsCutOrOverlapsAtAnySize)
{
    constexpr std::array sizes = {QSize(900, 600),  QSize(1100, 720),  QSize(1358, 700),
                                  QSize(1440, 920), QSize(1920, 1050), QSize(2560, 1400)};
    for (const char *language : {"french", "english", "chinese"}) {
        speak(QString::fromLatin1(language));
        for (const QSize &size : sizes) {
            window().setMinimumSize(900, 600);
            window().resize(size);
            for (const Screen &screen : screens()) {
                screen.show();
                layOut();
                SCOPED_TRACE(
                    (screen.name + u" %1 × %2 "_s.arg(size.width()).arg(size.height())).toStdString() +
                    language);
                ASSERT_EQ(window().size(), size);
                checkPlaces();
                closeOverlays();
            }
        }
    }
}

class Readers : public Laws {
protected:
    std::map<QString, int> m_lists;

    void walk(QAccessibleInterface *at)
    {
        ASSERT_NE(at, nullptr);
        const QAccessible::State state = at->state();
        if (state.invisible) {
            return;
        }
        const QString name = at->text(QAccessible::Name);
        const auto *widget = qobject_cast<QWidget *>(at->object());
        const std::string who =
            (widget ? QString::fromLatin1(widget->metaObject()->className()) : u"item"_s).toStdString() +
            " “" + name.toStdString() + "”";
        if (state.focusable && !(widget && widget == &window())) {
            EXPECT_FALSE(name.isEmpty()) << who;
            EXPECT_NE(at->role(), QAccessible::NoRole) << who;
            EXPECT_NE(at->role(), QAccessible::Client) << who;
        }
        if (at->role() == QAccessible::Slider) {
            EXPECT_FALSE(at->text(QAccessible::Value).isEmpty()) << who;
            const auto *value = at->valueInterface();
            ASSERT_NE(value, nullptr) << who;
            EXPECT_LE(value->minimumValue().toDouble(), value->currentValue().toDouble()) << who;
            EXPECT_GE(value->maximumValue().toDouble(), value->currentValue().toDouble()) << who;
        }
        if (at->role() == QAccessible::List && state.focusable) {
            EXPECT_EQ(++m_lists[name], 1) << "two lists of one name: " << who;
        }
        for (int i = 0; i < at->childCount(); ++i) {
            walk(at->child(i));
        }
    }
};

TEST_F(Readers, FindARoleANameAndAValueForEverything)
{
    QAccessibleInterface *top = QAccessible::queryAccessibleInterface(&window());
    EXPECT_EQ(top->role(), QAccessible::Window);
    EXPECT_EQ(top->text(QAccessible::Name), u"Tarnovel"_s);
    for (const char *language : {"english", "french"}) {
        speak(QString::fromLatin1(language));
        for (const Screen &screen : screens()) {
            screen.show();
            layOut();
            SCOPED_TRACE(screen.name.toStdString() + " " + language);
            m_lists.clear();
            walk(top);
            closeOverlays();
        }
    }
}

TEST_F(Readers, HearValuesAsTheyAreShown)
{
    window().state().setTool(Tool::Border);
    layOut();
    FrameSettings wide = settings();
    wide.border = 0.04;
    model().update(wide);
    QAccessibleInterface *width = QAccessible::queryAccessibleInterface(track(u"width"_s));
    EXPECT_EQ(width->text(QAccessible::Value), u"4.0 %"_s);
    EXPECT_EQ(width->valueInterface()->currentValue().toDouble(), 4);
    width->valueInterface()->setCurrentValue(2);
    EXPECT_NEAR(settings().border, 0.02, 1e-9);
    speak(u"french"_s);
    EXPECT_EQ(width->text(QAccessible::Value), u"2,0\u202f%"_s);
    auto *canvas = QAccessible::queryAccessibleInterface(page().canvas());
    EXPECT_EQ(canvas->role(), QAccessible::Graphic);
}

} // namespace
} // namespace tarnovel::test
