// Small files of our own that the fuzzers begin with: make_seeds FOLDER

#include <cstdio>
#include <filesystem>
#include <string>

#include <QDir>
#include <QFile>

#include <vips/vips.h>

#include "base/Json.h"
#include "model/FrameSettingsJson.h"
#include "model/Session.h"
#include "render/BuiltInTemplate.h"

using namespace tarnovel;
using namespace Qt::StringLiterals;

namespace {

void write(const QString &file, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    if (!out.open(QFile::WriteOnly) || out.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
        std::exit(1);
    }
}

/// Thumbnails of the samples, with their metadata, in every format; a picture that the library cannot write
/// is left out.
void pictures(const QString &folder)
{
    const QStringList endings = {u"jpg"_s,
                                 u"jpg[interlace]"_s,
                                 u"png"_s,
                                 u"png[interlace]"_s,
                                 u"webp"_s,
                                 u"tif"_s,
                                 u"tif[tile,compression=deflate]"_s,
                                 u"heic[compression=hevc]"_s,
                                 u"avif"_s};
    for (const QString &ending : endings) {
        const QString kind = ending.section(u'[', 0, 0);
        QDir().mkpath(folder + u"/decode-"_s + kind);
        for (const char *name : {"boat", "night"}) {
            VipsImage *small = nullptr;
            const std::string source = std::string(TARNOVEL_SOURCE_DIR "/samples/") + name + ".jpg";
            if (vips_thumbnail(source.c_str(), &small, 48, nullptr) == 0) {
                const QString goal = folder + u"/decode-%1/%2-%3.%4"_s.arg(kind, QString::fromLatin1(name))
                                                  .arg(endings.indexOf(ending))
                                                  .arg(ending);
                if (vips_image_write_to_file(small, qPrintable(goal), nullptr) != 0) {
                    std::fprintf(stderr, "no seed of kind %s: %s", qPrintable(ending), vips_error_buffer());
                    vips_error_clear();
                }
                g_object_unref(small);
            }
        }
    }
}

void documents(const QString &folder)
{
    Session session;
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        const QString id = BuiltInTemplates::id(look);
        PhotoItem photo;
        photo.id = QUuid::createUuidV5(QUuid(), id);
        photo.file = id + u".jpg"_s;
        photo.width = 300;
        photo.height = 200;
        photo.settings = BuiltInTemplates::make(look, {}, {});
        const QByteArray style = writeJson(toJson(photo.settings));
        write(folder + u"/style/"_s + id,
              style + "\nscale=0.7\npreset=square\nfilm.format=medium67\n"
                      "layers.title.size=0.05\ntitle=Morning\ncolor={\"r\":1,\"g\":0,\"b\":0}");
        session.photos = {photo};
        write(folder + u"/session/"_s + id, writeSession(session));
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2 || vips_init(argv[0]) != 0) {
        std::fprintf(stderr, "make_seeds FOLDER\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    pictures(folder);
    documents(folder);
    QFile signature(QStringLiteral(TARNOVEL_SOURCE_DIR "/samples/signature.txt"));
    if (signature.open(QFile::ReadOnly)) {
        const QByteArray text = signature.readAll();
        const qsizetype stroke = text.indexOf("\n\n");
        for (const char pen : {'0', '1', '2', '3'}) {
            write(folder + u"/ink/pen-"_s + QChar::fromLatin1(pen),
                  pen + QByteArray("\n") + text.left(stroke));
        }
    }
}
