#pragma once

#include <functional>

#include <QWidget>

#include "collage/CollageStudio.h"

namespace tarnovel::app {

class Field;
class Stepper;
class StockPicker;
class Switch;

/// What the edge of a film strip says.
class FilmEdgePage : public QWidget {
    Q_OBJECT

public:
    explicit FilmEdgePage(CollageStudio &studio);

private:
    void change(const std::function<void(FilmEdge &)> &edit);
    void showState();

    CollageStudio &m_studio;
    StockPicker *m_stock;
    Field *m_text;
    Switch *m_numbers;
    Stepper *m_first;
};

} // namespace tarnovel::app
