#pragma once

#include <memory>
#include <optional>
#include <stop_token>

#include <QStringList>

#include "model/Session.h"

namespace tarnovel {
class ImagePipeline;
}

namespace tarnovel::cli {

/// The look that a command asks for, as typed.
struct StyleRequest {
    std::optional<QString> templateId;
    std::optional<QString> styleFile;
    QStringList sets;
    QStringList texts;
    std::optional<QString> background;
    std::optional<QString> logo;
    std::optional<QString> signature;

    bool isEmpty() const;
    /// The arguments that ask for it.
    QStringList arguments() const;
};

/// Gives photos the look that was asked for.
class Styler {
public:
    /// Finds out what is wrong with the request before any photo is opened. Throws a UsageError, and a
    /// Refusal for a style or a picture that cannot be read.
    Styler(const StyleRequest &request, ImagePipeline &pipeline, std::stop_token stop);
    ~Styler();
    Styler(const Styler &) = delete;
    Styler &operator=(const Styler &) = delete;

    /// The photo as inspected in its style; a film frame's number goes on by `index`.
    PhotoItem styled(const PhotoItem &inspected, int index) const;
    /// The same without the colours that a template takes from the photo's pixels.
    PhotoItem shaped(const PhotoItem &inspected, int index) const;

    /// The template that the style names; empty for none.
    QString templateId() const;

    /// What is odd about the style without being wrong, in the current language.
    QStringList warnings() const;

private:
    struct Parts;
    PhotoItem made(const PhotoItem &inspected, int index, const QList<Ink> &palette) const;

    std::unique_ptr<const Parts> m_parts;
    ImagePipeline &m_pipeline;
    const std::stop_token m_stop;
};

} // namespace tarnovel::cli
