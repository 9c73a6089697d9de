#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QSocketNotifier>

namespace tarnovel::app {

/// The ends of the program that nobody in the window asks for: a signal, the end of the desktop's session, a
/// display that goes away. `save` is called before each, once. One lives at a time, as long as what `save` needs.
class ProgramEnd : public QObject {
    Q_OBJECT

public:
    explicit ProgramEnd(std::function<void()> save);
    ~ProgramEnd() override;

private:
    void signalled();

    std::function<void()> m_save;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tarnovel::app
