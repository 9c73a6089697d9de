#include "app/Wording.h"

#include <array>
#include <utility>

namespace tarnovel::app::Wording {

QString local(QString text)
{
#ifndef Q_OS_MACOS
    struct Name {
        const char *theirs;
        const char *ours;
    };
    static constexpr std::array names = std::to_array<Name>({
        {"⇧⌘", "Ctrl+Shift+"},
        {"⌘", "Ctrl+"},
        {"Show in Finder", "Show in folder"},
        {"在访达中显示", "在文件夹中显示"},
        {"Afficher dans le Finder", "Afficher dans le dossier"},
        {"The original stays in Photos.", "The original stays in its folder."},
        {"The originals will remain in Photos.", "The originals will remain in their folders."},
        {"L’original reste dans Photos.", "L’original reste dans son dossier."},
        {"Les originaux restent dans Photos.", "Les originaux restent dans leurs dossiers."},
        {"原照片仍在相册中", "原照片仍在原文件夹中"},
        {"原照片仍会保留在相册中", "原照片仍会保留在原文件夹中"},
        {" to Photos", " to Pictures"},
        {" dans Photos", " dans Images"},
        {"到相册", "到“图片”"},
        {"存储到“文件”", "保存到文件夹"},
        {" or save them to Files", " or save them to a folder"},
        {"dans Fichiers", "dans un dossier"},
    });
    for (const Name &name : names) {
        text.replace(QString::fromUtf8(name.theirs), QString::fromUtf8(name.ours));
    }
#endif
    return text;
}

} // namespace tarnovel::app::Wording
