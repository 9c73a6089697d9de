#pragma once

#include <stop_token>

#include <QObject>

#include "base/Worker.h"
#include "collage/CollageOutput.h"

namespace tarnovel {

/// Renders a collage and writes it into the library, off the interface thread. One that is given up, by
/// cancel() or with this object, leaves no file and tells nothing.
class CollageSave : public QObject {
    Q_OBJECT

public:
    explicit CollageSave(ImagePipeline &pipeline) : m_pipeline(pipeline) {}
    ~CollageSave() override { m_stop.request_stop(); }

    /// `photos` are in slot order.
    void start(const CollageDesign &design, const QList<PhotoItem> &photos, const QString &libraryFolder);
    void cancel() { m_stop.request_stop(); }

Q_SIGNALS:
    /// Whoever takes the file claims it.
    void saved(const tarnovel::CollageOutput::Saved &collage);
    /// Why, in the language of the moment; empty when there is nothing to say.
    void failed(const QString &reason);

private:
    ImagePipeline &m_pipeline;
    std::stop_source m_stop;
    Worker m_worker;
};

} // namespace tarnovel
