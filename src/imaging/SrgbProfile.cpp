#include "imaging/SrgbProfile.h"

#include <array>
#include <cmath>

#include <QList>

namespace tarnovel {

namespace {

void append16(QByteArray &bytes, unsigned value)
{
    bytes.append(static_cast<char>(value >> 8U & 0xffU));
    bytes.append(static_cast<char>(value & 0xffU));
}

void append32(QByteArray &bytes, quint32 value)
{
    append16(bytes, value >> 16U);
    append16(bytes, value & 0xffffU);
}

/// In parts of 65536, as profiles hold fractions.
void appendFraction(QByteArray &bytes, double value)
{
    append32(bytes, static_cast<quint32>(static_cast<qint32>(std::lround(value * 65536))));
}

template<size_t Count>
QByteArray fractions(const char *type, const std::array<double, Count> &values)
{
    QByteArray tag(type, 4);
    append32(tag, 0);
    for (const double value : values) {
        appendFraction(tag, value);
    }
    return tag;
}

/// A text in one language.
QByteArray text(const char *ascii)
{
    constexpr unsigned recordBytes = 12;
    constexpr unsigned textAt = 28;
    const QByteArray letters(ascii);
    QByteArray tag("mluc", 4);
    append32(tag, 0);
    append32(tag, 1);
    append32(tag, recordBytes);
    tag.append("enUS", 4);
    append32(tag, static_cast<quint32>(letters.size() * 2));
    append32(tag, textAt);
    for (const char letter : letters) {
        append16(tag, static_cast<uchar>(letter));
    }
    return tag;
}

/// The curve of sRGB: (a·x + b) to the power g from d on, c·x below.
QByteArray curve()
{
    constexpr unsigned withLinearPart = 3;
    QByteArray tag("para", 4);
    append32(tag, 0);
    append16(tag, withLinearPart);
    append16(tag, 0);
    for (const double value : {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045}) {
        appendFraction(tag, value);
    }
    return tag;
}

struct Tag {
    const char *signature;
    QByteArray content;
};

/// D50, the white of the profile connection space.
constexpr std::array white = {0.9642, 1.0, 0.8249};

QByteArray made()
{
    // The primaries and D65 of sRGB, adapted to D50 by the linear Bradford transform.
    const QList<Tag> tags = {
        {"desc", text("sRGB")},
        {"cprt", text("CC0")},
        {"wtpt", fractions("XYZ ", white)},
        {"chad", fractions("sf32", std::array{1.0478516, 0.0229187, -0.0501709, 0.0295715, 0.9904938,
                                              -0.0170593, -0.0092316, 0.0150452, 0.7517853})},
        {"rXYZ", fractions("XYZ ", std::array{0.4360657, 0.2224884, 0.0139160})},
        {"gXYZ", fractions("XYZ ", std::array{0.3851471, 0.7168732, 0.0970764})},
        {"bXYZ", fractions("XYZ ", std::array{0.1430664, 0.0606079, 0.7140961})},
        {"rTRC", curve()},
        {"gTRC", curve()},
        {"bTRC", curve()},
    };
    constexpr quint32 headerBytes = 128;
    QByteArray table;
    QByteArray contents;
    append32(table, static_cast<quint32>(tags.size()));
    const quint32 contentsAt = headerBytes + 4 + static_cast<quint32>(tags.size()) * 12;
    for (const Tag &tag : tags) {
        // The three curves are one.
        const qsizetype known = contents.indexOf(tag.content);
        const qsizetype at = known >= 0 ? known : contents.size();
        if (known < 0) {
            contents.append(tag.content);
            contents.append(QByteArray((4 - contents.size() % 4) % 4, '\0'));
        }
        table.append(tag.signature, 4);
        append32(table, contentsAt + static_cast<quint32>(at));
        append32(table, static_cast<quint32>(tag.content.size()));
    }
    QByteArray header;
    append32(header, contentsAt + static_cast<quint32>(contents.size()));
    append32(header, 0);
    append32(header, 0x04200000); // version 4.2
    header.append("mntrRGB XYZ ", 12);
    for (const unsigned part : {2026U, 1U, 1U, 0U, 0U, 0U}) {
        append16(header, part);
    }
    header.append("acsp", 4);
    header.append(QByteArray(28, '\0')); // no platform, flags, device or intent
    for (const double value : white) {
        appendFraction(header, value);
    }
    header.append(QByteArray(headerBytes - header.size(), '\0'));
    return header + table + contents;
}

} // namespace

QByteArray srgbProfile()
{
    static const QByteArray profile = made();
    return profile;
}

} // namespace tarnovel
