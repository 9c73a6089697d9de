#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include <QImage>
#include <QObject>
#include <QUuid>

#include "base/Worker.h"
#include "editor/EditorModel.h"

namespace tarnovel {

/// Writes a signature into the library, off the interface thread, and gives it to the photo that was selected
/// at the start, as one undo step. Whatever fails changes nothing and leaves no file.
class SignatureSave : public QObject {
    Q_OBJECT

public:
    explicit SignatureSave(EditorModel &model);
    /// Stops a save that is under way; one that has not reached the photo by now leaves no file.
    ~SignatureSave() override;

    /// It may throw OperationCancelled once its token asks to stop.
    using Render = std::function<QImage(const std::stop_token &)>;
    /// `render` is called on another thread. Nothing happens while a save is under way.
    void start(Render render);
    bool running() const { return m_running; }

Q_SIGNALS:
    void finished(bool saved);

private:
    struct Written {
        /// Empty when the picture could not be encoded or written.
        QString file;
        double aspect = 1;
    };
    static Written write(const Render &render, const QString &folder, const std::stop_token &stop);
    void settle(const Written &written);

    EditorModel &m_model;
    bool m_running = false;
    std::optional<QUuid> m_photo;
    Written m_written;
    std::stop_source m_stop;
    Worker m_worker;
};

} // namespace tarnovel
