#pragma once

#include <QLabel>

#include "app/kit/Phrase.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

/// A text in one of the sizes of type, in the current language; long ones wrap.
class Label : public QLabel {
    Q_OBJECT

public:
    enum class Tone { Ink, Secondary, Accent, Danger };

    Label(Type type, Phrase phrase, Tone tone = Tone::Ink, QWidget *parent = nullptr);

    void setPhrase(Phrase phrase);
    void setTone(Tone tone);
    /// Asks for the text again.
    void refresh();

protected:
    void changeEvent(QEvent *event) override;

private:
    Phrase m_phrase;
};

} // namespace tarnovel::app
