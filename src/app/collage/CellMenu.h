#pragma once

#include <functional>

#include <QPoint>

class QWidget;

namespace tarnovel {
class CollageStudio;
}

namespace tarnovel::app {

/// What can be done with a cell of the board, beside it: `at` is a point of `board`.
void openCellMenu(QWidget *board, CollageStudio &studio, int slot, QPoint at,
                  const std::function<void()> &replaceAsked);

} // namespace tarnovel::app
