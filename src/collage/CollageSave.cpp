#include "collage/CollageSave.h"

#include <algorithm>
#include <functional>

#include "base/Cancellation.h"
#include "base/Log.h"
#include "language/AppLanguage.h"
#include "pipeline/ImagePipeline.h"
#include "pipeline/PipelineError.h"

namespace tarnovel {

void CollageSave::start(const CollageDesign &design, const QList<PhotoItem> &photos,
                        const QString &libraryFolder)
{
    m_worker.run(
        [this, design, photos, libraryFolder, stop = m_stop.get_token()] {
            std::function<void()> outcome = [] {}; // given up meanwhile
            try {
                const CollageOutput::Saved collage =
                    CollageOutput::save(m_pipeline, design, photos, libraryFolder, stop);
                outcome = [this, collage] { Q_EMIT saved(collage); };
            } catch (const OperationCancelled &) {
                return outcome;
            } catch (const PipelineFailure &failure) {
                const auto culprit = std::ranges::find(photos, failure.file(), &PhotoItem::file);
                const QString name =
                    culprit == photos.end() ? QString() : culprit->name + localized({"：", ": ", "\u202f: "});
                outcome = [this, reason = name + errorDescription(failure)] { Q_EMIT failed(reason); };
            } catch (const FileError &error) {
                qCWarning(logCollage) << "the collage was not saved:" << error.what();
                outcome = [this, reason = errorDescription(error)] { Q_EMIT failed(reason); };
            } catch (const std::exception &error) {
                qCWarning(logCollage) << "the collage was not saved:" << error.what();
                outcome = [this] { Q_EMIT failed({}); };
            }
            // A call that is never delivered takes the unclaimed file with it.
            return outcome;
        },
        [stop = m_stop.get_token()](const std::function<void()> &outcome) {
            if (!stop.stop_requested()) {
                outcome();
            }
        });
}

} // namespace tarnovel
