#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QSocketNotifier>

namespace tarnovel::app {

/// The ends of the program that nobody in the window asks for: a signal, the end of the desktop's session, a
/// display that goes away. `save` is called before each, and told whether the end is certain: a session's may
/// be called off. One lives at a time, as long as what `save` needs.
class ProgramEnd : public QObject {
    Q_OBJECT

public:
    explicit ProgramEnd(std::function<void(bool certain)> save);
    ~ProgramEnd() override;

private:
    void signalled();

    std::function<void(bool)> m_save;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tarnovel::app
