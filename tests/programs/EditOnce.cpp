// Opens the library named first, removes the last photo, changes the style of the rest, saves, cleans up, and
// prints the model's message. Crash tests kill it on the way. With "full" the first save finds room for 700
// bytes only, as on a full disk, and a second one follows when there is room again. With "publish" it copies the file
// named last into the folder under the first free number.

#include <csignal>
#include <cstdio>
#include <cstring>

#include <sys/resource.h>

#include <QGuiApplication>

#include "base/AtomicFile.h"
#include "editor/EditorModel.h"

using namespace tarnovel;

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QString library = QString::fromLocal8Bit(argv[1]);
    if (argc > 3 && std::strcmp(argv[2], "publish") == 0) {
        publishFile(QString::fromLocal8Bit(argv[3]), library,
                    [](int attempt) { return QString::number(attempt); });
        return 0;
    }
    ImagePipeline pipeline(library, library);
    SessionWriter writer(library);
    Preferences preferences(library + QStringLiteral("/../preferences.ini"));
    SystemClock clock;
    EditorModel model({pipeline, writer, preferences, clock, library}, EditorModel::Load::StoredSession);
    const auto save = [&model] {
        model.scheduleSave(SaveScheduler::Moment::AtOnce);
        model.flush();
        QCoreApplication::processEvents();
        std::puts(model.message().toUtf8().constData());
        model.setMessage({});
    };
    if (model.photos().size() > 1) {
        model.removePhotos({model.photos().last().id});
    }
    FrameSettings settings = model.current() ? model.current()->settings : FrameSettings();
    settings.scale = 0.3;
    model.update(settings);
    if (argc > 2 && std::strcmp(argv[2], "full") == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit room = {700, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &room);
        save();
        room.rlim_cur = RLIM_INFINITY;
        setrlimit(RLIMIT_FSIZE, &room);
    }
    save();
    return 0;
}
