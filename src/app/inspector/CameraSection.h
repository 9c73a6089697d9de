#pragma once

#include <array>

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class Field;
class Switch;

/// What the camera wrote about the photo, and whether the frame says it.
class CameraSection : public Section {
    Q_OBJECT

public:
    explicit CameraSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    struct Row {
        const char *id;
        Switch *visible = nullptr;
        Field *text = nullptr;
    };
    void addRow(Row &row, const Text &title);
    void enterDate();

    std::array<Row, 4> m_rows = {{{"brand"}, {"model"}, {"exif"}, {"date"}}};
    QWidget *m_notice;
    Button *m_enter;
};

} // namespace tarnovel::app
