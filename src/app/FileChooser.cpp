#include "app/FileChooser.h"

#include <utility>

#include <QFileDialog>
#include <QStandardPaths>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

QString pictureFilter()
{
    return localized({"图片", "Pictures", "Images"}) +
           u" (*.jpg *.jpeg *.jpe *.png *.heic *.heif *.hif *.avif *.webp *.tif *.tiff"
           " *.JPG *.JPEG *.PNG *.HEIC *.HEIF *.HIF *.AVIF *.WEBP *.TIF *.TIFF);;"_s +
           localized({"所有文件", "All files", "Tous les fichiers"}) + u" (*)"_s;
}

QFileDialog *dialog(QWidget *window, const QString &title)
{
    auto *made =
        new QFileDialog(window, title, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    made->setAttribute(Qt::WA_DeleteOnClose);
    return made;
}

void askFiles(QWidget *window, QFileDialog::FileMode mode, const QString &title,
              const FileChooser::Files &chosen)
{
    QFileDialog *ask = dialog(window, title);
    ask->setFileMode(mode);
    ask->setNameFilter(pictureFilter());
    QObject::connect(ask, &QFileDialog::filesSelected, window,
                     [chosen](const QStringList &files) { chosen(files); });
    ask->open();
}

} // namespace

FileChooser FileChooser::dialogs()
{
    FileChooser chooser;
    chooser.photos = [](QWidget *window, const Files &chosen) {
        askFiles(window, QFileDialog::ExistingFiles,
                 localized({"添加照片", "Add photos", "Ajouter des photos"}), chosen);
    };
    chooser.picture = [](QWidget *window, const Files &chosen) {
        askFiles(window, QFileDialog::ExistingFile,
                 localized({"选择图片", "Choose an image", "Choisir une image"}), chosen);
    };
    chooser.folder = [](QWidget *window, const Folder &chosen) {
        QFileDialog *ask =
            dialog(window, localized({"导出到文件夹", "Export to folder", "Exporter vers un dossier"}));
        ask->setFileMode(QFileDialog::Directory);
        ask->setOption(QFileDialog::ShowDirsOnly);
        QObject::connect(ask, &QFileDialog::fileSelected, window,
                         [chosen](const QString &folder) { chosen(folder); });
        ask->open();
    };
    return chooser;
}

} // namespace tarnovel::app
