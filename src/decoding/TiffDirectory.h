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
/// same way. Damage reads as what is missing, and so does all that comes after some ten thousands of fields;
/// nothing is thrown.
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
    /// The bytes of a field, at most `most`.
    QByteArray bytes(const TiffField &field, qint64 most = 100) const;
    bool isLittleEndian() const { return m_little; }

private:
    quint64 value(qint64 at, int size) const;
    quint64 number(QByteArrayView bytes) const;

    Read m_read;
    /// How many more fields are read, of all directories together.
    mutable quint64 m_fieldsLeft = 1 << 16;
    bool m_little = false;
    bool m_large = false;
    qint64 m_first = 0;
};

/// Whether an EXIF block marks its picture as Adobe RGB the way cameras do, by rule R03 of the file system
/// for cameras (DCF) with a colour space that is not sRGB.
bool saysAdobeRgb(const QByteArray &exif);

/// The fields of a TIFF file that say how a picture was taken, as an EXIF block of their own: a few hundred
/// bytes, wherever in the file they stand.
QByteArray captureBlock(const TiffDirectories &file);

/// What a TIFF file holds as its picture.
struct TiffPicture {
    /// The page to decode, from 0; none when the file holds nothing but small previews of a picture that only
    /// a raw developer reads.
    std::optional<int> page;
};
TiffPicture findTiffPicture(const TiffDirectories &file);

} // namespace tarnovel
