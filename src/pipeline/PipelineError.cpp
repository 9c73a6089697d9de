#include "pipeline/PipelineError.h"

#include <cerrno>

#include "language/AppLanguage.h"

namespace tarnovel {

QString errorDescription(PipelineError error)
{
    switch (error) {
    case PipelineError::unreadable:
        return localized({"无法读取这张照片，请尝试 JPEG、HEIC 或 PNG。",
                          "Cannot read this photo. Try JPEG, HEIC or PNG.",
                          "Impossible de lire cette photo. Essayez JPEG, HEIC ou PNG."});
    case PipelineError::tooLarge:
        return localized({"输出超过安全内存上限，请选择 4096 像素。",
                          "Output exceeds the memory limit. Choose 4096 pixels.",
                          "L’image dépasse la limite de mémoire. Choisissez 4096 pixels."});
    case PipelineError::write:
        return localized({"无法生成文件，请检查剩余储存空间。",
                          "Could not write the file. Check available storage.",
                          "Écriture du fichier impossible. Vérifiez l’espace disponible."});
    case PipelineError::fileSize:
        return localized(
            {"当前分辨率无法压缩到目标大小，请降低分辨率或提高大小上限。",
             "Cannot meet this file-size limit. Lower the resolution or raise the limit.",
             "Impossible de respecter cette taille. Baissez la résolution ou augmentez la limite."});
    }
    return {};
}

QString errorDescription(const FileError &error)
{
    switch (error.code()) {
    case ENOSPC:
    case EDQUOT:
        return localized(
            {"磁盘空间不足。", "No space is left on the disk.", "Il n’y a plus d’espace sur le disque."});
    case EACCES:
    case EPERM:
        return localized(
            {"没有写入权限。", "Writing here is not allowed.", "L’écriture n’est pas autorisée ici."});
    case EROFS:
        return localized({"磁盘为只读。", "The disk is read-only.", "Le disque est en lecture seule."});
    case ENOENT:
        return localized({"文件夹不存在。", "The folder is gone.", "Le dossier n’existe plus."});
    case ENOTDIR:
    case EEXIST:
        return localized({"这里需要文件夹，却有同名文件。", "A file stands where a folder is needed.",
                          "Un fichier occupe la place d’un dossier."});
    default:
        return errorDescription(PipelineError::write);
    }
}

} // namespace tarnovel
