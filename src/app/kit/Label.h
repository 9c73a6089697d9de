#pragma once

#include <QLabel>

#include "app/kit/Phrase.h"
#include "app/kit/Theme.h"

class QPainter;

namespace tarnovel::app {

/// A text in one of the sizes of type with its own distance of lines, in the current language; long ones
/// wrap.
class Label : public QLabel {
    Q_OBJECT

public:
    enum class Tone { Ink, Secondary, Accent, Danger };

    Label(Type type, Phrase phrase, Tone tone = Tone::Ink, QWidget *parent = nullptr);

    void setPhrase(Phrase phrase);
    void setTone(Tone tone);
    /// Asks for the text again.
    void refresh();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    /// Sets the text in lines of this width, and returns their common height. Paints them where there is a
    /// painter.
    double setLines(double width, QPainter *painter, QPointF at) const;
    int heightOf(int width) const;

    Type m_type;
    Phrase m_phrase;
};

} // namespace tarnovel::app
