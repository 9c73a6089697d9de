#include "support/TestWorld.h"

#include <QApplication>
#include <gmock/gmock.h>

#include "app/kit/Theme.h"

int main(int argc, char **argv)
{
    tarnovel::test::settle();
    testing::InitGoogleMock(&argc, argv);
    const QApplication application(argc, argv);
    tarnovel::applyTheme(false);
    tarnovel::test::failOnQtWarnings();
    return RUN_ALL_TESTS();
}
