#pragma once

#include <QWidget>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

class Button;

/// A card for a place that has nothing in it yet: what it would be, and the one thing to do about it.
class EmptyState : public QWidget {
public:
    /// Takes the button.
    EmptyState(const char *icon, Phrase heading, Phrase text, Button *button);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tarnovel::app
