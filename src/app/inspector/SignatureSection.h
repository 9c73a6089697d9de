#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class PictureWell;
class Slider;

/// The handwritten signature: where it stands, and how large.
class SignatureSection : public Section {
    Q_OBJECT

public:
    explicit SignatureSection(const EditorContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    PictureWell *m_well;
    /// The picture in the well.
    qint64 m_shown = 0;
    QWidget *m_empty;
    QWidget *m_change;
    Button *m_write;
    Button *m_remove;
    QWidget *m_controls;
    Slider *m_size;
    Slider *m_x;
    Slider *m_y;
};

} // namespace tarnovel::app
