#pragma once

#include <QPainter>

#include "collage/CollageGestures.h"
#include "collage/CollageStudio.h"
#include "editor/EditorWorld.h"

namespace tarnovel::test {

/// A studio on an editor with twelve photos, the first three wider than tall.
class StudioWorld : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
    bool m_filled = fill();
    std::unique_ptr<CollageStudio> m_made = std::make_unique<CollageStudio>(m_model, m_pipeline, m_clock);
    CollageStudio &m_studio = *m_made;
    CollageGestures m_gestures{m_studio};

    bool fill()
    {
        QList<PhotoItem> list;
        for (int i = 0; i < 12; ++i) {
            list.append(photo(QStringLiteral("%1.jpg").arg(i), i < 3 ? QSize(60, 40) : QSize(40, 60)));
        }
        return m_model.append(list) == 12;
    }

    QUuid id(int index) const { return m_model.photos().at(index).id; }

    void open(const QList<int> &indices)
    {
        for (const int index : indices) {
            m_studio.toggle(id(index));
        }
        m_studio.setStage({600, 600}, 1);
        m_studio.start();
    }

    /// Waits until the board is as sharp as it will be.
    bool settle()
    {
        return waitFor([this] {
            m_studio.board();
            m_clock.advance(CollageBoardImages::rest);
            return m_studio.settled();
        });
    }

    static QImage drawn(const CollageView &view)
    {
        QImage canvas(view.plan.size, QImage::Format_RGB32);
        QPainter painter(&canvas);
        view.draw(painter);
        return canvas;
    }

    QStringList libraryFiles() const { return QDir(m_library).entryList(QDir::Files | QDir::Hidden); }
    QUuid photoOf(int slot) const { return m_studio.design().cells.at(slot).photo; }
    double rootRatio() const { return m_studio.design().node.ratio; }
};

} // namespace tarnovel::test
