#include "support/TestWorld.h"

#include <QApplication>
#include <QStyleFactory>
#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    tarnovel::test::settle();
    testing::InitGoogleMock(&argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QApplication application(argc, argv);
    tarnovel::test::failOnQtWarnings();
    return RUN_ALL_TESTS();
}
