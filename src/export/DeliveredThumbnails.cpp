#include "export/DeliveredThumbnails.h"

#include <algorithm>

#include "pipeline/WhenFinished.h"

namespace tarnovel {

namespace {

constexpr qsizetype most = 4;
constexpr int longEdgePixels = 700;

} // namespace

void DeliveredThumbnails::clear()
{
    ++m_run;
    m_images.clear();
}

void DeliveredThumbnails::read(const QStringList &files)
{
    clear();
    for (const QString &file : files.first(std::min(most, files.size()))) {
        whenFinished<QImage>(m_pipeline.read(file, longEdgePixels), this,
                             [this, run = m_run](const QFuture<QImage> &finished) {
                                 if (run != m_run) {
                                     return;
                                 }
                                 try {
                                     m_images.append(finished.result());
                                     Q_EMIT changed();
                                 } catch (const QException &) {
                                     return; // a file that went away has no thumbnail
                                 }
                             });
    }
}

} // namespace tarnovel
