#include "app/handwriting/HandwritingKeys.h"

#include <algorithm>

namespace tarnovel::app {

HandwritingKeys::HandwritingKeys(const HandwritingActs &acts)
{
    m_rows = {{Qt::Key_Escape, Row::Kind::Key, acts.leave},
              {Qt::Key_Space, Row::Kind::Key, acts.hold},
              {Qt::Key_Z, Row::Kind::ControlShift, acts.redo},
              {Qt::Key_Z, Row::Kind::Control, acts.undo},
              {Qt::Key_Y, Row::Kind::Control, acts.redo},
              {Qt::Key_0, Row::Kind::Control, acts.fit},
              {Qt::Key_Plus, Row::Kind::Control, acts.enlarge},
              {Qt::Key_Equal, Row::Kind::Control, acts.enlarge},
              {Qt::Key_Minus, Row::Kind::Control, acts.reduce},
              {u'+', Row::Kind::Sign, acts.enlarge},
              {u'=', Row::Kind::Sign, acts.enlarge},
              {u'-', Row::Kind::Sign, acts.reduce},
              {u'd', Row::Kind::Sign, [acts] { acts.move(false); }},
              {u'm', Row::Kind::Sign, [acts] { acts.move(true); }},
              {u'e', Row::Kind::Sign, [acts] { acts.take(HandwritingTool::Eraser); }},
              {u'[', Row::Kind::Sign, [acts] { acts.widen(-1); }},
              {u']', Row::Kind::Sign, [acts] { acts.widen(1); }}};
    for (size_t i = 0; i < handwritingTools.size(); ++i) {
        m_rows.push_back({u'1' + static_cast<int>(i), Row::Kind::Sign,
                          [acts, tool = handwritingTools.at(i)] { acts.take(tool); }});
    }
}

const std::function<void()> *HandwritingKeys::find(const QKeyEvent &key) const
{
    if (key.modifiers() & Qt::AltModifier) {
        return nullptr;
    }
    const bool control = key.modifiers() & Qt::ControlModifier;
    const bool shift = key.modifiers() & Qt::ShiftModifier;
    const int sign = key.text().size() == 1 ? key.text().toLower().at(0).unicode() : 0;
    const auto stands = [&](const Row &row) {
        switch (row.kind) {
        case Row::Kind::Key:
            return !control && row.key == key.key();
        case Row::Kind::Sign:
            return !control && row.key == sign;
        case Row::Kind::Control:
            return control && row.key == key.key();
        case Row::Kind::ControlShift:
            break;
        }
        return control && shift && row.key == key.key();
    };
    const auto row = std::ranges::find_if(m_rows, stands);
    return row == m_rows.end() ? nullptr : &row->act;
}

} // namespace tarnovel::app
