#include <gtest/gtest.h>

#include "base/Log.h"

namespace tarnovel {
namespace {

int foreignLines = 0;

TEST(Log, KeepsItsLastLinesAndPassesOthersOn)
{
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { ++foreignLines; });
    installLog();
    testing::internal::CaptureStderr();
    for (int i = 0; i < 250; ++i) {
        qCWarning(logModel) << "line" << i;
    }
    qWarning("not ours");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(lastLogLines().size(), 200);
    EXPECT_TRUE(lastLogLines().constLast().endsWith(QStringLiteral("tarnovel.model: line 249")));
    EXPECT_EQ(foreignLines, 1);
    qInstallMessageHandler(before);
}

} // namespace
} // namespace tarnovel
