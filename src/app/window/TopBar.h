#pragma once

#include <QWidget>

class QAction;

namespace tarnovel::app {

class Button;

/// The bar over the editor: what brings photos in, and what sends them out.
class TopBar : public QWidget {
    Q_OBJECT

public:
    struct Actions {
        QAction *add;
        QAction *collage;
        QAction *undo;
        QAction *redo;
        QAction *guide;
        QAction *settings;
        QAction *exporting;
    };

    explicit TopBar(const Actions &actions);

    /// Without photos there is nothing to undo or to export.
    void setHome(bool home);
    /// Shows a running export on its button: "5 / 12", or nothing.
    /// `held` while the run waits at a photo that it could not write.
    void setExportProgress(const QString &progress, bool held);
    QSize sizeHint() const override { return {1100, 56}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Button *addButton(QAction *action, const char *icon, bool iconOnly, bool primary = false);

    QWidget *m_left;
    QWidget *m_history;
    Button *m_export;
};

} // namespace tarnovel::app
