#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include <QImage>
#include <QObject>

#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// What the canvas needs of the selected photo. An absent picture has not arrived, or cannot be read.
struct Previews {
    QImage photo;
    QImage background;
    QImage logo;
    QImage signature;
    QList<Ink> palette;
    /// The pictures that were asked for and cannot be read.
    QList<FramePicture> missing;
};

/// Loads the pictures of one photo at a time; a newer request cancels the older one, which then publishes
/// nothing more.
class PreviewLoader : public QObject {
    Q_OBJECT

public:
    explicit PreviewLoader(ImagePipeline &pipeline);
    ~PreviewLoader() override;

    /// Starts loading. Pictures of `previews` are replaced as they arrive.
    void load(const PhotoItem &item);
    /// Stops loading and drops the pictures; the decoded photo is kept for its return.
    void clear();
    /// Stops loading and forgets the decoded photo too.
    void forget();

    /// The pictures beside the photo that these settings show; previews of settings with the same are the
    /// same.
    struct Pictures {
        Backdrop background = Backdrop::solid;
        std::optional<QString> backgroundFile;
        std::optional<QString> logo;
        std::optional<QString> signature;
        bool operator==(const Pictures &) const = default;
    };
    static Pictures picturesOf(const FrameSettings &settings);

    const Previews &previews() const { return m_previews; }

Q_SIGNALS:
    void changed();
    /// The photo itself cannot be read.
    void unreadable();

private:
    void loadBackground(const QString &photo, const Pictures &pictures);
    void request(FramePicture picture, const QString &file, int maxPixel, QImage Previews::*place);
    template<typename Value>
    void whenDone(const QFuture<Value> &future, std::function<void(const Value &)> arrived,
                  std::function<void()> failed);

    ImagePipeline &m_pipeline;
    std::stop_source m_stop;
    Previews m_previews;
    QString m_loadedFile;
    QImage m_loadedImage;
    /// Of the signature that is shown or being loaded.
    std::optional<QString> m_signatureFile;
};

} // namespace tarnovel
