#include "decoding/HeifColor.h"

#include <functional>

#include <QList>
#include <QtEndian>

namespace tarnovel {

namespace {

/// A file's description is a few hundred bytes, or some hundred thousand for many tiles.
constexpr qint64 largestDescription = 16 << 20;

/// Reads numbers one after the other; past the end they are 0.
class Numbers {
public:
    explicit Numbers(QByteArrayView bytes) : m_bytes(bytes) {}

    quint32 next(int size)
    {
        quint32 made = 0;
        for (int i = 0; i < size; ++i, ++m_at) {
            made = made << 8U | (m_at < m_bytes.size() ? static_cast<uchar>(m_bytes[m_at]) : 0U);
        }
        return made;
    }
    bool isOver() const { return m_at >= m_bytes.size(); }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
};

/// Calls `visit(type, content)` for each box in the bytes, until it returns false.
void eachBox(QByteArrayView bytes, const std::function<bool(QByteArrayView, QByteArrayView)> &visit)
{
    constexpr qsizetype headBytes = 8;
    while (bytes.size() >= headBytes) {
        Numbers head(bytes);
        qsizetype length = head.next(4);
        length = length == 0 ? bytes.size() : length;
        if (length < headBytes || length > bytes.size() ||
            !visit(bytes.sliced(4, 4), bytes.sliced(headBytes, length - headBytes))) {
            return;
        }
        bytes = bytes.sliced(length);
    }
}

QByteArrayView box(QByteArrayView bytes, QByteArrayView type)
{
    QByteArrayView found;
    eachBox(bytes, [&](QByteArrayView name, QByteArrayView content) {
        found = name == type ? content : found;
        return found.isNull();
    });
    return found;
}

/// The content of the `meta` box that describes the pictures, without its version.
QByteArray description(const ImageFile &file)
{
    qint64 at = 0;
    for (int i = 0; i < 32; ++i) {
        const QByteArray head = file.read(at, 16);
        if (head.size() < 16) {
            break;
        }
        const auto stated = qFromBigEndian<quint32>(head.constData());
        const bool isLarge = stated == 1;
        const bool isLast = stated == 0; // it reaches to the end of the file
        const auto length = isLarge  ? static_cast<qint64>(qFromBigEndian<quint64>(head.constData() + 8))
                            : isLast ? file.size() - at
                                     : qint64(stated);
        const int headBytes = isLarge ? 16 : 8;
        if (length < headBytes || length > file.size() - at) {
            break;
        }
        if (head.mid(4, 4) == "meta" && length <= largestDescription) {
            return file.read(at + headBytes + 4, length - headBytes - 4);
        }
        at += length;
    }
    return {};
}

/// The numbers, from 1, of the properties that an item has.
QList<int> propertiesOf(quint32 item, QByteArrayView associations)
{
    Numbers numbers(associations);
    const quint32 version = numbers.next(1);
    const bool wide = (numbers.next(3) & 1U) != 0;
    const quint32 items = numbers.next(4);
    for (quint32 i = 0; i < items && !numbers.isOver(); ++i) {
        const bool isWanted = numbers.next(version < 1 ? 2 : 4) == item;
        QList<int> found;
        for (quint32 left = numbers.next(1); left > 0; --left) {
            const quint32 entry = numbers.next(wide ? 2 : 1);
            found.append(static_cast<int>(wide ? entry & 0x7fffU : entry & 0x7fU)); // without "essential"
        }
        if (isWanted) {
            return found;
        }
    }
    return {};
}

} // namespace

std::optional<CodedColor> readCodedColor(const ImageFile &file)
{
    const QByteArray meta = description(file);
    Numbers primary(box(meta, "pitm"));
    const quint32 version = primary.next(1);
    primary.next(3);
    const quint32 item = primary.next(version == 0 ? 2 : 4);
    const QByteArrayView properties = box(meta, "iprp");
    const QList<int> own = propertiesOf(item, box(properties, "ipma"));
    std::optional<CodedColor> found;
    int number = 0;
    eachBox(box(properties, "ipco"), [&](QByteArrayView type, QByteArrayView content) {
        ++number;
        if (type == "colr" && content.startsWith("nclx") && content.size() >= 8 && own.contains(number)) {
            Numbers codes(content.sliced(4));
            const int primaries = static_cast<int>(codes.next(2));
            found = {primaries, static_cast<int>(codes.next(2))};
        }
        return !found;
    });
    return found;
}

} // namespace tarnovel
