#pragma once

#include <QWidget>

#include "app/kit/Phrase.h"

class QVBoxLayout;

namespace tarnovel::app {

class EmptyState;
class PictureWell;

/// The place of a picture that a frame may have: what to do while there is none, otherwise the picture, how
/// it is replaced or taken away, and its controls.
class PictureHolder : public QWidget {
    Q_OBJECT

public:
    struct Words {
        /// Of the empty place.
        const char *icon;
        Phrase heading;
        Phrase text;
        /// On both buttons that ask for a picture.
        const char *chooseIcon;
        Phrase choose;
        Phrase replace;
        Phrase remove;
        /// The object names of what asks and of what removes.
        QString chooseName;
        QString removeName;
    };

    explicit PictureHolder(const Words &words);

    /// Where the controls go, which show with the picture.
    QVBoxLayout *controls() const { return m_column; }
    PictureWell *well() const { return m_well; }
    void setPresent(bool present);

Q_SIGNALS:
    void chooseAsked();
    void removeAsked();

private:
    PictureWell *m_well;
    EmptyState *m_empty;
    QWidget *m_change;
    QWidget *m_controls;
    QVBoxLayout *m_column;
};

} // namespace tarnovel::app
