#pragma once

#include <functional>
#include <optional>

#include <QByteArray>
#include <QList>

namespace tarnovel {

/// One field of a TIFF directory.
struct TiffField {
    int tag = 0;
    int type = 0;
    quint64 count = 0;
    /// Where its value stands in the block.
    qint64 at = 0;
};

/// Reads the directories of TIFF files, large ones (BigTIFF) included, and of EXIF blocks, which are made the
/// same way. Damage reads as what is missing; nothing is thrown.
class TiffDirectories {
public:
    /// Gives bytes of the block; fewer where it ends.
    using Read = std::function<QByteArray(qint64 offset, qint64 count)>;

    explicit TiffDirectories(Read read);

    struct Directory {
        QList<TiffField> fields;
        /// The next directory of the chain; 0 for the last.
        qint64 next = 0;

        const TiffField *find(int tag) const;
    };

    /// Where the first directory stands; 0 for no TIFF block.
    qint64 first() const { return m_first; }
    Directory directory(qint64 at) const;
    /// The whole numbers of a field, at most a hundred.
    QList<quint64> numbers(const TiffField &field) const;
    std::optional<quint64> number(const Directory &directory, int tag) const;
    /// The bytes of a field, at most a hundred.
    QByteArray bytes(const TiffField &field) const;

private:
    quint64 value(qint64 at, int size) const;

    Read m_read;
    bool m_little = false;
    bool m_large = false;
    qint64 m_first = 0;
};

/// Whether an EXIF block marks its picture as Adobe RGB the way cameras do, by rule R03 of the file system
/// for cameras (DCF) with a colour space that is not sRGB.
bool saysAdobeRgb(const QByteArray &exif);

/// What a TIFF file holds as its picture.
struct TiffPicture {
    /// The page to decode, from 0; none when the file holds nothing but small previews of a picture that only
    /// a raw developer reads.
    std::optional<int> page;
};
TiffPicture findTiffPicture(const TiffDirectories &file);

} // namespace tarnovel
