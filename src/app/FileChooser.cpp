#include "app/FileChooser.h"

#include <utility>

#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

#include "language/AppLanguage.h"
#include "model/PictureSuffixes.h"
#include "model/Preferences.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

QString pictureFilter()
{
    const QString patterns = u"*."_s + pictureSuffixes().join(u" *."_s);
    return localized({"图片", "Pictures", "Images"}) + u" (%1 %2);;"_s.arg(patterns, patterns.toUpper()) +
           localized({"所有文件", "All files", "Tous les fichiers"}) + u" (*)"_s;
}

/// What the dialog is for, and with it the place that it opens in.
struct Purpose {
    Preferences *preferences;
    Preference<QVariant> folder;
};

QFileDialog *dialog(QWidget *window, const QString &title, const Purpose &purpose)
{
    auto *made = new QFileDialog(window, title);
    made->setAttribute(Qt::WA_DeleteOnClose);
    const QString last = purpose.preferences->get(purpose.folder).toString();
    // A folder that has gone would stand in the dialog as a name to open.
    made->setDirectory(
        QFileInfo(last).isDir() ? last : QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    return made;
}

void askFiles(QWidget *window, QFileDialog::FileMode mode, const QString &title, const Purpose &purpose,
              const FileChooser::Files &chosen)
{
    QFileDialog *ask = dialog(window, title, purpose);
    ask->setFileMode(mode);
    ask->setNameFilter(pictureFilter());
    ask->setOption(QFileDialog::HideNameFilterDetails);
    QObject::connect(ask, &QFileDialog::filesSelected, window, [chosen, purpose](const QStringList &files) {
        if (!files.isEmpty()) {
            purpose.preferences->set(purpose.folder, {QFileInfo(files.first()).absolutePath()});
        }
        chosen(files);
    });
    ask->open();
}

} // namespace

FileChooser FileChooser::dialogs(Preferences &preferences)
{
    const Purpose photos{&preferences, PreferenceKeys::photosFolder};
    const Purpose exports{&preferences, PreferenceKeys::exportFolder};
    FileChooser chooser;
    chooser.photos = [photos](QWidget *window, const Files &chosen) {
        askFiles(window, QFileDialog::ExistingFiles,
                 localized({"添加照片", "Add photos", "Ajouter des photos"}), photos, chosen);
    };
    chooser.picture = [photos](QWidget *window, const Files &chosen) {
        askFiles(window, QFileDialog::ExistingFile,
                 localized({"选择图片", "Choose an image", "Choisir une image"}), photos, chosen);
    };
    chooser.folder = [exports](QWidget *window, const Folder &chosen) {
        QFileDialog *ask = dialog(
            window, localized({"导出到文件夹", "Export to folder", "Exporter vers un dossier"}), exports);
        ask->setFileMode(QFileDialog::Directory);
        ask->setOption(QFileDialog::ShowDirsOnly);
        ask->selectFile({});
        QObject::connect(ask, &QFileDialog::fileSelected, window, [chosen, exports](const QString &folder) {
            exports.preferences->set(exports.folder, {folder});
            chosen(folder);
        });
        ask->open();
    };
    return chooser;
}

} // namespace tarnovel::app
