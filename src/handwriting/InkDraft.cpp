#include "handwriting/InkDraft.h"

#include <array>
#include <cmath>
#include <limits>

#include <QDataStream>
#include <QIODevice>

#include "base/Json.h"
#include "base/Uuid.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr std::array<std::pair<InkPen, const char *>, 4> penNames = {{{InkPen::signature, "signature"},
                                                                      {InkPen::fountain, "fountain"},
                                                                      {InkPen::pencil, "pencil"},
                                                                      {InkPen::marker, "marker"}}};

/// Six numbers a sample: tens of thousands of samples are common, and as JSON numbers they would be slow to
/// read. A pressure that was not reported is no number.
QByteArray packed(const QList<InkSample> &samples)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const InkSample &sample : samples) {
        stream << sample.position << sample.seconds
               << sample.pressure.value_or(std::numeric_limits<double>::quiet_NaN()) << sample.tilt;
    }
    return bytes.toBase64();
}

QList<InkSample> unpacked(const JsonReader &reader)
{
    const QByteArray bytes = QByteArray::fromBase64(reader.text().toLatin1());
    constexpr qsizetype sampleBytes = 6 * sizeof(double);
    if (bytes.size() % sampleBytes != 0) {
        reader.fail("not whole samples");
    }
    QList<InkSample> samples;
    QDataStream stream(bytes);
    for (qsizetype i = 0; i < bytes.size() / sampleBytes; ++i) {
        InkSample sample;
        double pressure = 0;
        stream >> sample.position >> sample.seconds >> pressure >> sample.tilt;
        if (!std::isnan(pressure)) {
            sample.pressure = pressure;
        }
        for (const double value : {sample.position.x(), sample.position.y(), sample.seconds, sample.tilt.x(),
                                   sample.tilt.y()}) {
            if (!std::isfinite(value)) {
                reader.fail("not a finite number");
            }
        }
        samples.append(sample);
    }
    return samples;
}

InkPen penFrom(const JsonReader &reader)
{
    for (const auto &[pen, name] : penNames) {
        if (reader.text() == QLatin1StringView(name)) {
            return pen;
        }
    }
    reader.fail("no such pen");
}

} // namespace

QByteArray writeInkDraft(const InkDraft &draft)
{
    Json document;
    document["photo"] = jsonText(uuidText(draft.photo));
    document["finish"] = jsonText(handwritingFinishName(draft.finish));
    document["strokes"] = Json::array();
    for (const InkStroke &stroke : draft.strokes) {
        Json object;
        object["pen"] = penNames.at(static_cast<size_t>(stroke.pen)).second;
        object["color"] = {stroke.color.r, stroke.color.g, stroke.color.b};
        object["width"] = stroke.width;
        object["zoom"] = stroke.zoom;
        object["samples"] = packed(stroke.samples).toStdString();
        document["strokes"].push_back(std::move(object));
    }
    return writeJson(document);
}

InkDraft readInkDraft(const QByteArray &document)
{
    const Json json = parseJson(document);
    const JsonReader reader(json);
    InkDraft draft;
    draft.photo = uuidFromText(reader.member("photo").text()).value_or(QUuid());
    draft.finish = handwritingFinishFromName(reader.member("finish").text()).value_or(HandwritingFinish::color);
    for (const JsonReader &each : reader.member("strokes").elements()) {
        const std::vector<JsonReader> color = each.member("color").elements();
        if (color.size() != 3) {
            each.member("color").fail("expected three numbers");
        }
        draft.strokes.append({penFrom(each.member("pen")),
                              {color[0].number(), color[1].number(), color[2].number()},
                              each.member("width").number(),
                              each.member("zoom").number(),
                              unpacked(each.member("samples"))});
    }
    return draft;
}

} // namespace tarnovel
