#pragma once

#include "app/inspector/Section.h"

namespace tarnovel::app {

class Button;
class Field;
class Segments;
class Stepper;
class StockPicker;
class Switch;

/// Film frames: the format, the stock, and what is printed on the edges.
class FilmSection : public Section {
    Q_OBJECT

public:
    explicit FilmSection(const EditingContext &context);
    void reset() override;

protected:
    void display(const PhotoItem &photo) override;

private:
    void addEdges(QVBoxLayout *box);
    void change(const std::function<void(FilmOptions &)> &change);

    QWidget *m_other;
    QWidget *m_film;
    Segments *m_format;
    StockPicker *m_stocks;
    Switch *m_perforations;
    Switch *m_light;
    Switch *m_numbers;
    Stepper *m_number;
    Field *m_top;
    Field *m_bottom;
};

} // namespace tarnovel::app
