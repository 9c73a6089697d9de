#pragma once

#include <QImage>
#include <QList>

#include "app/EditorContext.h"

namespace tarnovel::app {

class Button;
class Label;
class RecoveryCard;
class Switch;

/// Three framed photos that show what the program does.
class SampleFrames : public QWidget {
    Q_OBJECT

public:
    explicit SampleFrames(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QList<QImage> m_frames;
    double m_ratio = 0;
};

/// The first photos of the stored session, small.
class SessionRow : public QWidget {
    Q_OBJECT

public:
    explicit SessionRow(const PhotosContext &context);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    PhotosContext m_context;
};

/// What the window shows before there is something to edit: where photos are dropped, and the last session.
class HomeScreen : public QWidget {
    Q_OBJECT

public:
    HomeScreen(const PhotosContext &context, EditorState &state);

    /// Offers the stored session again.
    void refresh();
    QWidget *addButton() const;
    /// The keyboard starts on what one most likely wants: to go on, or to begin.
    void takeKeyboard();

Q_SIGNALS:
    void continueAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeDropCard();
    QWidget *makeContinueCard();
    void place();

    PhotosContext m_context;
    EditorState &m_state;
    QWidget *m_drop;
    RecoveryCard *m_recovery;
    QWidget *m_continue;
    QWidget *m_privacy;
    Button *m_add;
    Button *m_go;
    Switch *m_autoApply;
    Label *m_summary;
    SampleFrames *m_samples;
};

} // namespace tarnovel::app
