#pragma once

#include <deque>
#include <exception>
#include <memory>
#include <optional>
#include <stop_token>

#include <QFuture>
#include <QList>
#include <QString>

#include "base/Json.h"
#include "base/UnclaimedFile.h"
#include "cli/StyleOptions.h"
#include "model/Session.h"
#include "pipeline/ExportOptions.h"
#include "pipeline/ImagePipeline.h"

namespace tarnovel::cli {

/// One of the sizes that a command was asked for.
struct WantedSize {
    /// As typed: "1080", "original" or a long edge.
    QString name;
    ExportOptions options;
};

/// One photo of a batch, and what is to be made of it.
struct PhotoJob {
    /// Its place in the whole list, from 0.
    int index = 0;
    /// How it was called in the list.
    QString photo;
    QList<WantedSize> sizes;
};

/// What became of one size of a photo: a file that nobody has claimed yet, or why there is none.
struct MadeSize {
    /// In the temporary folder; empty after a failure.
    QString path;
    std::shared_ptr<UnclaimedFile> owner;
    /// What a line of JSON says of it beside its names.
    Json facts;
    QString message;
    QString code;
};

struct MadePhoto {
    /// In the order in which they were wanted. Where none of them could be made for one and the same reason,
    /// there is one entry with that.
    QList<MadeSize> sizes;
    /// What its maker had to say by the way.
    QStringList warnings = {};

    /// As one maker hands it to another process, and back. What cannot be read is a failure of the worker.
    Json toJson() const;
    static MadePhoto fromJson(const Json &json);
    static MadePhoto failed(const QString &message, const QString &code);
};

/// Makes the photos of a batch, several at a time, and gives them back in their order.
class PhotoMaker {
public:
    virtual ~PhotoMaker() = default;
    /// Photos that may be on their way; beyond that, `next` has to be called first.
    virtual qsizetype most() const = 0;
    /// Throws OperationCancelled.
    virtual void begin(const PhotoJob &job) = 0;
    /// Waits for the photo that was begun first of those that have not been taken. Throws
    /// OperationCancelled.
    virtual MadePhoto next() = 0;
};

/// Where photos come from: files that are styled as asked, or items that have their own style.
class PhotoSource {
public:
    /// Files.
    PhotoSource(ImagePipeline &pipeline, const Styler &styler, std::stop_token stop);
    /// The photos of a session, which stay as they are.
    PhotoSource(ImagePipeline &pipeline, QList<PhotoItem> items, std::stop_token stop);

    /// Ready to be drawn. Throws PipelineFailure and OperationCancelled.
    PhotoItem item(const PhotoJob &job) const;
    /// The same with all that decides on its size, but perhaps without its colours.
    PhotoItem shape(const PhotoJob &job) const;
    CaptureMetadata captured(const PhotoJob &job) const;
    QString templateOf(const PhotoJob &job) const;
    /// Why the photo's file cannot be read whatever is in it.
    std::optional<FileError> trouble(const PhotoJob &job) const;
    ImagePipeline &pipeline() const { return m_pipeline; }
    const std::stop_token &stop() const { return m_stop; }

private:
    PhotoItem inspected(const PhotoJob &job) const;
    QString file(const PhotoJob &job) const;

    ImagePipeline &m_pipeline;
    const Styler *m_styler = nullptr;
    const QList<PhotoItem> m_items;
    const std::stop_token m_stop;
};

/// Makes photos in this process: while one is drawn, encoded and written, the next one is read.
class LocalMaker : public PhotoMaker {
public:
    explicit LocalMaker(const PhotoSource &source) : m_source(source) {}

    qsizetype most() const override { return 2; }
    void begin(const PhotoJob &job) override;
    MadePhoto next() override;

private:
    /// A photo that is on its way, or why it is not.
    struct Begun {
        PhotoItem item;
        QList<QFuture<ExportedFile>> files;
        std::exception_ptr failure;
    };

    const PhotoSource &m_source;
    std::deque<Begun> m_begun;
};

} // namespace tarnovel::cli
