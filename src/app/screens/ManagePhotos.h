#pragma once

#include <set>

#include "app/EditorContext.h"
#include "app/kit/ItemView.h"

namespace tarnovel::app {

class Button;
class Label;
class ScrollArea;

/// The session's photos as tiles of which several can be picked.
class ManageGrid : public ItemView {
    Q_OBJECT

public:
    explicit ManageGrid(const PhotosContext &context);

    const std::set<QUuid> &picked() const { return m_picked; }
    void setPicked(const std::set<QUuid> &picked);
    /// Photos may have come or gone.
    void reload();

    int count() const override { return static_cast<int>(m_context.model.photos().size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override;
    bool itemChosen(int index) const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void pickedChanged();

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int columns(int width) const;

    PhotosContext m_context;
    std::set<QUuid> m_picked;
};

/// The page where several photos are removed together.
class ManagePhotos : public QWidget {
    Q_OBJECT

public:
    explicit ManagePhotos(const PhotosContext &context);

    void open();

Q_SIGNALS:
    void closeAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *makeFooter();
    void refresh();
    void askRemove();
    void askClear();

    PhotosContext m_context;
    ManageGrid *m_grid;
    ScrollArea *m_area;
    Button *m_selectAll;
    Button *m_clear;
    Label *m_selected;
    Label *m_total;
    Button *m_deselect;
    Button *m_remove;
};

} // namespace tarnovel::app
