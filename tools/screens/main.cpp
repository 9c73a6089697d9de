// Draws every screen of the editor, for looking at: light and dark, in three languages, in both reference
// sizes, into a folder.
//
//     build/release/tools/screens FOLDER [--only TEXT] PHOTO...
//
// QT_SCALE_FACTOR=2 draws them for screens of double pixels.

#include <cstdio>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStyleFactory>

#include "app/kit/Motion.h"
#include "app/kit/Theme.h"
#include "app/window/EditorPage.h"
#include "screens/Screen.h"

using namespace tarnovel;
using namespace tarnovel::app;
using namespace tarnovel::screens;
using namespace Qt::StringLiterals;

namespace {

class Camera {
public:
    Camera(QString folder, QString only) : m_folder(std::move(folder)), m_only(std::move(only)) {}

    void take(World &world, const QList<Screen> &screens, const QString &kind)
    {
        static constexpr std::array languages = {"chinese", "english", "french"};
        for (const bool dark : {false, true}) {
            for (const char *language : languages) {
                for (const QSize size : sizes(dark, language)) {
                    setLanguageSources(
                        {[language] { return QString::fromLatin1(language); }, [] { return QStringList(); }});
                    applyTheme(dark);
                    world.window().retranslate();
                    world.window().setMinimumSize(size.boundedTo({900, 600}));
                    world.window().resize(size);
                    world.window().show();
                    for (const Screen &screen : screens) {
                        const QString name = u"%1-%2-%3-%4-%5.png"_s.arg(
                            kind, screen.name, QString::fromLatin1(language).left(2),
                            dark ? u"dark"_s : u"light"_s, QString::number(size.width()));
                        if (!name.contains(m_only)) {
                            continue;
                        }
                        const std::function<void()> back = screen.show(world);
                        world.settle();
                        world.window().grab().save(m_folder + u'/' + name);
                        back();
                        ++m_taken;
                    }
                }
            }
        }
    }

    int taken() const { return m_taken; }

private:
    /// The design's two sizes in every look; the smallest and the largest where words are longest.
    static QList<QSize> sizes(bool dark, const char *language)
    {
        QList<QSize> list = {QSize(1100, 720), QSize(1440, 920)};
        if (!dark && qstrcmp(language, "french") == 0) {
            list += {QSize(900, 600), QSize(2560, 1400)};
        }
        return list;
    }

    QString m_folder;
    QString m_only;
    int m_taken = 0;
};

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    const QApplication application(argc, argv);
    QApplication::setFont(typeFont(Type::Body));
    QCommandLineParser parser;
    const QCommandLineOption only(u"only"_s, u"Only pictures whose names contain TEXT."_s, u"TEXT"_s);
    parser.addOption(only);
    parser.process(application);
    QStringList arguments = parser.positionalArguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "screens FOLDER PHOTO...\n");
        return 2;
    }
    const QString folder = arguments.takeFirst();
    QDir().mkpath(folder);
    Motion::setReduced(true);
    Camera camera(folder, parser.value(only));
    World empty(arguments, 0);
    const std::unique_ptr<World> kept = World::withSessionSetAside(arguments, 12);
    camera.take(*kept, homeScreens(), u"kept"_s);
    camera.take(empty, homeScreens(), u"empty"_s);
    World full(arguments, 12);
    camera.take(full, homeScreens(), u"twelve"_s);
    full.window().showEditor();
    camera.take(full, editorScreens() + signedScreens() + collageScreens() + handwritingScreens(),
                u"twelve"_s);
    World one(arguments, 1);
    one.window().showEditor();
    camera.take(one, {editorScreens().first()}, u"one"_s);
    World fifty(arguments, 50);
    fifty.window().showEditor();
    QList<Screen> crowded = editorScreens();
    crowded.removeIf([](const Screen &screen) {
        return !QStringList{u"tool-templates"_s, u"manage"_s, u"preview"_s}.contains(screen.name);
    });
    camera.take(fifty, crowded, u"fifty"_s);
    std::printf("%d pictures\n", camera.taken());
    return 0;
}
