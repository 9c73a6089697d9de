#pragma once

#include <optional>

#include <QColor>

#include "app/kit/ItemView.h"
#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A row of colours; the last may be a wheel that stands for any other.
class Swatches : public ItemView {
    Q_OBJECT

public:
    enum class Shape {
        Dots,
        /// Three wide tiles, for the colours of a photo.
        Tiles,
    };
    struct Entry {
        QColor color;
        Phrase name;
    };

    explicit Swatches(Shape shape, QWidget *parent = nullptr);

    void setEntries(QList<Entry> entries);
    const QList<Entry> &entries() const { return m_entries; }
    /// Adds a wheel at the end; its choice is told by `wheelChosen`, and it shows the ring when no entry has
    /// the colour.
    void setWheel(bool wheel);
    void setColor(const QColor &color);

    int count() const override { return static_cast<int>(m_entries.size()) + (m_wheel ? 1 : 0); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {120, sizeHint().height()}; }

Q_SIGNALS:
    void colorChosen(const QColor &color);
    void wheelChosen();

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;

private:
    bool isWheel(int index) const { return m_wheel && index == m_entries.size(); }

    Shape m_shape;
    QList<Entry> m_entries;
    bool m_wheel = false;
    QColor m_color;
};

} // namespace tarnovel::app
