#include "handwriting/SignatureSave.h"

#include <exception>

#include <QFile>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/Log.h"
#include "base/Uuid.h"
#include "imaging/ImageEncoder.h"
#include "model/Signature.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

SignatureSave::SignatureSave(EditorModel &model) : m_model(model) {}

SignatureSave::~SignatureSave()
{
    m_stop.request_stop();
    m_worker.wait();
    if (m_running && !m_written.file.isEmpty()) {
        QFile::remove(m_model.libraryFolder() + u'/' + m_written.file);
    }
}

void SignatureSave::start(Render render)
{
    if (m_running) {
        return;
    }
    m_running = true;
    m_photo = m_model.selected();
    m_worker.run(
        [this, render = std::move(render), folder = m_model.libraryFolder(), stop = m_stop.get_token()] {
            m_written = write(render, folder, stop); // read elsewhere only when this thread rests
            return m_written;
        },
        [this](const Written &written) { settle(written); });
}

SignatureSave::Written SignatureSave::write(const Render &render, const QString &folder,
                                            const std::stop_token &stop)
{
    Written written;
    try {
        const QImage image = render(stop);
        const QByteArray bytes = encodePng(image, stop);
        throwIfCancelled(stop);
        const QString name = u"handwriting-"_s + uuidText(QUuid::createUuid()) + u".png"_s;
        try {
            replaceFile(folder + u'/' + name, bytes, Durability::Synced, Audience::Owner);
        } catch (...) {
            // The folder's sync may fail when the file stands already.
            QFile::remove(folder + u'/' + name);
            throw;
        }
        written.file = name;
        written.aspect = static_cast<double>(image.width()) / image.height();
    } catch (const OperationCancelled &) {
        return {}; // nobody waits for it any more
    } catch (const std::exception &error) {
        qCWarning(logHandwriting) << "the signature was not saved:" << error.what();
        return {}; // told as a save that failed, when anybody still waits for it
    }
    return written;
}

void SignatureSave::settle(const Written &written)
{
    m_running = false;
    const PhotoItem *photo = m_model.current();
    const bool there = photo && m_model.selected() == m_photo;
    if (written.file.isEmpty() || !there) {
        if (!written.file.isEmpty()) {
            QFile::remove(m_model.libraryFolder() + u'/' + written.file);
        }
        Q_EMIT finished(false);
        return;
    }
    m_model.step(withSignature(photo->settings, written.file, written.aspect));
    Q_EMIT finished(true);
}

} // namespace tarnovel
