#pragma once

#include <vector>

#include "app/kit/ItemView.h"
#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A row of two to five choices of which one holds.
class Segments : public ItemView {
    Q_OBJECT

public:
    explicit Segments(std::vector<Phrase> names, QWidget *parent = nullptr);

    void setNames(std::vector<Phrase> names);
    /// One icon a segment, before its name.
    void setIcons(std::vector<const char *> icons);

    int count() const override { return static_cast<int>(m_names.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override { return m_names.at(static_cast<size_t>(index))(); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {40 * count(), sizeHint().height()}; }

protected:
    void paintGround(QPainter &painter) override;
    void paintItem(QPainter &painter, int index, const State &state) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Two lines where a name is wider than its segment.
    bool tall() const;
    bool m_wasTall = false;
    std::vector<Phrase> m_names;
    std::vector<const char *> m_icons;
};

} // namespace tarnovel::app
