#include "support/TestWorld.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    tarnovel::test::settle();
    testing::InitGoogleMock(&argc, argv);
    const QGuiApplication application(argc, argv);
    tarnovel::test::failOnQtWarnings();
    return RUN_ALL_TESTS();
}
