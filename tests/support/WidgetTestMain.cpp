#include "support/TestWorld.h"

#include <QApplication>
#include <QStyleFactory>
#include <gmock/gmock.h>

#include "app/kit/Theme.h"

int main(int argc, char **argv)
{
    tarnovel::test::settle();
    testing::InitGoogleMock(&argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QApplication application(argc, argv);
    QApplication::setFont(tarnovel::app::typeFont(tarnovel::app::Type::Body));
    tarnovel::app::applyTheme(false);
    tarnovel::test::failOnQtWarnings();
    return RUN_ALL_TESTS();
}
