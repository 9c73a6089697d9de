#include "pipeline/PipelineError.h"

#include <cerrno>

#include <QRegularExpression>

#include "language/AppLanguage.h"

namespace tarnovel {

QString errorDescription(PipelineError error)
{
    switch (error) {
    case PipelineError::Unreadable:
        return localized({"无法读取这张照片，请尝试 JPEG、HEIC 或 PNG。",
                          "Cannot read this photo. Try JPEG, HEIC or PNG.",
                          "Impossible de lire cette photo. Essayez JPEG, HEIC ou PNG."});
    case PipelineError::TooLarge:
        return localized({"输出超过安全内存上限，请选择 4096 像素。",
                          "Output exceeds the memory limit. Choose 4096 pixels.",
                          "L’image dépasse la limite de mémoire. Choisissez 4096 pixels."});
    case PipelineError::Write:
        return localized({"无法生成文件，请检查剩余储存空间。",
                          "Could not write the file. Check available storage.",
                          "Écriture du fichier impossible. Vérifiez l’espace disponible."});
    case PipelineError::FileSize:
        return localized(
            {"当前分辨率无法压缩到目标大小，请降低分辨率或提高大小上限。",
             "Cannot meet this file-size limit. Lower the resolution or raise the limit.",
             "Impossible de respecter cette taille. Baissez la résolution ou augmentez la limite."});
    }
    return {};
}

namespace {

QString readingDescription(const FileError &error)
{
    switch (error.code()) {
    case ENAMETOOLONG:
        return localized(
            {"文件名太长。", "The file’s name is too long.", "Le nom du fichier est trop long."});
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
        return error.path().contains(QRegularExpression(QStringLiteral("[*?]")))
                   ? localized({"没有符合这个模式的文件。", "No file matches this pattern.",
                                "Aucun fichier ne correspond à ce motif."})
                   : localized({"文件不存在。", "There is no such file.", "Ce fichier n’existe pas."});
    case EISDIR:
        return localized(
            {"这是文件夹，不是文件。", "This is a folder, not a file.", "C’est un dossier, pas un fichier."});
    case EACCES:
    case EPERM:
        return localized({"没有读取这个文件的权限。", "You are not allowed to read this file.",
                          "Vous n’êtes pas autorisé à lire ce fichier."});
    case EINVAL:
    case ENXIO:
        return localized(
            {"这不是普通文件。", "This is not an ordinary file.", "Ce n’est pas un fichier ordinaire."});
    case ENODATA:
        return localized({"文件是空的。", "The file is empty.", "Le fichier est vide."});
    case EILSEQ:
        return localized({"文件名不是 UTF-8，请先重命名。", "The file’s name is not UTF-8. Rename it first.",
                          "Le nom du fichier n’est pas en UTF-8. Renommez-le d’abord."});
    default:
        return localized({"磁盘无法读取这个文件。", "The disk could not read this file.",
                          "Le disque n’a pas pu lire ce fichier."});
    }
}

} // namespace

QString errorDescription(const FileError &error)
{
    if (error.access() == FileAccess::Read) {
        return readingDescription(error);
    }
    switch (error.code()) {
    case EFBIG:
        return localized({"文件超过了这里允许的大小。", "The file would be larger than is allowed here.",
                          "Le fichier dépasserait la taille autorisée ici."});
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
        return errorDescription(PipelineError::Write);
    }
}

namespace {

QString faultDescription(PictureFault fault)
{
    switch (fault) {
    case PictureFault::SmallPreview:
        return localized({"文件里只有小预览图，请先在 RAW 软件中导出为 JPEG 或 TIFF。",
                          "This file holds only a small preview. Save it as JPEG or TIFF in a raw developer "
                          "first.",
                          "Ce fichier ne contient qu’un petit aperçu. Enregistrez-le d’abord en JPEG ou en "
                          "TIFF depuis un logiciel RAW."});
    case PictureFault::TooLarge:
        return localized({"图片太大，无法读入内存。请先缩小尺寸。",
                          "This picture is too large to be read into memory. Make it smaller first.",
                          "Cette image est trop grande pour tenir en mémoire. Réduisez-la d’abord."});
    case PictureFault::NoDecoder:
        return localized({"读取照片的组件无法启动，请重新安装 Tarnovel。",
                          "The part of Tarnovel that reads photos cannot be started. Install Tarnovel again.",
                          "Le composant qui lit les photos ne démarre pas. Réinstallez Tarnovel."});
    case PictureFault::Damaged:
        break;
    }
    return {};
}

} // namespace

QString errorDescription(const PipelineFailure &failure)
{
    QString cause;
    if (failure.trouble()) {
        cause = errorDescription(*failure.trouble());
    } else if (failure.fault()) {
        cause = faultDescription(*failure.fault());
    }
    if (failure.picture() != FramePicture::Photo) {
        return (missingPicture(failure.picture()) + u' ' + cause).trimmed();
    }
    return cause.isEmpty() ? errorDescription(failure.error()) : cause;
}

QString missingPicture(FramePicture picture)
{
    switch (picture) {
    case FramePicture::Photo:
        return localized({"无法读取这张照片的文件。", "The photo’s file cannot be read.",
                          "Le fichier de la photo est illisible."});
    case FramePicture::Background:
        return localized({"无法读取背景图片。", "The background picture cannot be read.",
                          "L’image de fond est illisible."});
    case FramePicture::Logo:
        return localized({"无法读取徽标图片。", "The logo cannot be read.", "Le logo est illisible."});
    case FramePicture::Signature:
        return localized(
            {"无法读取签名图片。", "The signature cannot be read.", "La signature est illisible."});
    }
    return {};
}

} // namespace tarnovel
