// Counts on two threads: handed over in order, or, with "race", both at once. It shows that a build with the
// thread sanitizer reports a race of ours, and nothing that Qt keeps in order.

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#include <QCoreApplication>
#include <QTimer>

#include "base/Worker.h"

using namespace tarnovel;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const bool race = argc > 1 && std::strcmp(argv[1], "race") == 0;
    int counted = 0;
    int rounds = 0;
    Worker worker;
    const std::function<void()> next = [&] {
        worker.run(
            [&counted, text = std::make_shared<QString>(QStringLiteral("count"))] {
                ++counted;
                return std::make_shared<QString>(*text + QStringLiteral("ed"));
            },
            [&](const std::shared_ptr<QString> &text) {
                counted += static_cast<int>(text->size()) - 6;
                if (++rounds == 200) {
                    QCoreApplication::quit();
                } else {
                    next();
                }
            });
        if (race) {
            ++counted;
        }
    };
    QTimer::singleShot(0, &application, next);
    const int status = QCoreApplication::exec();
    worker.wait();
    std::printf("%d\n", counted);
    return status;
}
