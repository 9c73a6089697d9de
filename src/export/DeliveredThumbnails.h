#pragma once

#include <QImage>
#include <QObject>
#include <QStringList>

#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// Small pictures of the first four files of a run that has ended, which arrive one after another; a file
/// that cannot be read has none.
class DeliveredThumbnails : public QObject {
    Q_OBJECT

public:
    explicit DeliveredThumbnails(ImagePipeline &pipeline) : m_pipeline(pipeline) {}

    /// In place of those of an earlier run.
    void read(const QStringList &files);
    void clear();
    const QList<QImage> &images() const { return m_images; }

Q_SIGNALS:
    void changed();

private:
    ImagePipeline &m_pipeline;
    QList<QImage> m_images;
    /// Tells what was asked for by an earlier run.
    int m_run = 0;
};

} // namespace tarnovel
