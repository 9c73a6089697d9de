// How pictures come into the window: opened, pasted or dropped.

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QMimeData>

#include "app/collage/CollageScreen.h"
#include "app/window/Activation.h"
#include "app/window/DropVeil.h"
#include "app/window/EditorPage.h"
#include "app/window/FileDrops.h"
#include "app/window/MainWindow.h"
#include "base/FileError.h"
#include "base/Log.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

void MainWindow::openPhotos(const QStringList &photos, const QString &activationToken)
{
    if (!photos.isEmpty()) {
        import(photos, ImportMode::Photos);
    }
    if (isVisible()) {
        Activation::bringToFront(*this, activationToken);
    }
}

void MainWindow::import(const QStringList &files, ImportMode mode)
{
    if (files.isEmpty()) {
        return;
    }
    ImportRequest request;
    request.paths = files;
    request.mode = mode;
    m_services.editor.imports.start(request);
}

bool MainWindow::backgroundWanted() const
{
    const PhotoItem *photo = m_services.editor.model.current();
    return photo && !m_page->atHome() && !m_page->exportShown() &&
           m_services.editor.state.tool() == Tool::Background &&
           photo->settings.background == Backdrop::image;
}

void MainWindow::paste()
{
    const QMimeData *copied = QApplication::clipboard()->mimeData();
    const QStringList files = FileDrops::pictures(copied);
    if (!files.isEmpty()) {
        import(files, backgroundWanted() ? ImportMode::Background : ImportMode::Photos);
        return;
    }
    if (!importImage(copied, localized({"粘贴的图片", "Pasted picture", "Image collée"}))) {
        state().say(localized({"剪贴板里没有图片。", "There is no picture on the clipboard.",
                               "Il n’y a pas d’image dans le presse-papiers."}),
                    Toast::Kind::Plain);
    }
}

bool MainWindow::importImage(const QMimeData *carried, const QString &name)
{
    const QImage image = qvariant_cast<QImage>(carried->imageData());
    if (image.isNull()) {
        return false;
    }
    try {
        if (!m_pasted) {
            m_pasted = std::make_unique<ScratchFolder>(u"tarnovel-paste-"_s);
        }
    } catch (const FileError &error) {
        qCWarning(logApp) << "nothing can be pasted:" << error.what();
        state().say(localized({"临时文件夹：", "Temporary folder: ", "Dossier temporaire\u202f: "}) +
                        errorDescription(error),
                    Toast::Kind::Error);
        return true;
    }
    const ImportMode mode = backgroundWanted() ? ImportMode::Background : ImportMode::Photos;
    const QString path = m_pasted->filePath(u"%1 %2.png"_s.arg(name).arg(++m_pastes));
    m_paster.run([image, path] { return image.save(path, "PNG", 90); },
                 [this, path, mode](bool saved) {
                     if (saved) {
                         import({path}, mode);
                     } else {
                         state().say(errorDescription(PipelineError::Write), Toast::Kind::Error);
                     }
                 });
    return true;
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QMimeData *carried = event->mimeData();
    if (currentPage() == m_collage && FileDrops::hasFiles(carried)) {
        event->acceptProposedAction();
        return;
    }
    const bool files = FileDrops::hasFiles(carried);
    const bool image = !files && carried->hasImage();
    if (currentPage() != m_page || !(files || image || FileDrops::hasWebAddress(carried))) {
        return;
    }
    const qsizetype count = image ? 1 : FileDrops::pictures(carried).size();
    m_veil->setGeometry(m_page->dropArea());
    m_veil->offer(count == 0           ? DropVeil::Offer::Nothing
                  : backgroundWanted() ? DropVeil::Offer::Background
                                       : DropVeil::Offer::Photos,
                  count);
    // An address may be let go of here, to be told why it cannot be used.
    m_dropUsable = count > 0 || !files;
    acceptDrag(event);
}

void MainWindow::dragMoveEvent(QDragMoveEvent *event)
{
    acceptDrag(event);
}

void MainWindow::acceptDrag(QDropEvent *event) const
{
    // What cannot be used is accepted for nothing: the pointer says so, and the drag tells when it leaves.
    event->setDropAction(m_dropUsable || currentPage() == m_collage ? event->proposedAction()
                                                                    : Qt::IgnoreAction);
    event->accept();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent *)
{
    m_veil->hide();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    m_veil->hide();
    const QMimeData *carried = event->mimeData();
    const QStringList files = FileDrops::pictures(carried);
    if (currentPage() == m_collage) {
        m_collage->addFiles(files);
    } else if (!files.isEmpty()) {
        import(files, backgroundWanted() ? ImportMode::Background : ImportMode::Photos);
    } else if (FileDrops::hasFiles(carried)) {
        return;
    } else if (!importImage(carried, localized({"拖入的图片", "Dropped picture", "Image déposée"}))) {
        state().say(localized({"无法从网址添加照片，请先保存图片。",
                               "Web addresses cannot be added. Save the picture first.",
                               "Impossible d’ajouter une adresse web. Enregistrez d’abord l’image."}),
                    Toast::Kind::Error);
    }
    event->acceptProposedAction();
}

} // namespace tarnovel::app
