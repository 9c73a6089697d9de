#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class PictureHolder;
class Slider;

/// The handwritten signature: where it stands, and how large.
class SignatureSection : public Section {
    Q_OBJECT

public:
    explicit SignatureSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    PictureHolder *m_holder;
    /// The picture in the well.
    qint64 m_shown = 0;
    Slider *m_size;
    Slider *m_x;
    Slider *m_y;
};

} // namespace tarnovel::app
