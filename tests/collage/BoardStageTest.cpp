#include "collage/CollageStudioWorld.h"

namespace tarnovel::test {
namespace {

using Stage = StudioWorld;

TEST_F(Stage, PlacesAreTheSameOnAFineScreen)
{
    open({0, 3, 4});
    m_studio.setStage({600, 600}, 1);
    const CollageLayout coarse = m_studio.layout();
    m_studio.setStage({600, 600}, 2);
    const CollageLayout fine = m_studio.layout();
    ASSERT_FALSE(coarse.dividers.isEmpty());
    for (qsizetype i = 0; i < coarse.dividers.size(); ++i) {
        EXPECT_NEAR(fine.dividers.at(i).position, coarse.dividers.at(i).position, 1);
        EXPECT_NEAR(fine.dividers.at(i).shared, coarse.dividers.at(i).shared, 1);
        EXPECT_NEAR(fine.dividers.at(i).parent.width(), coarse.dividers.at(i).parent.width(), 1);
    }
    for (const auto &[slot, rect] : coarse.cells) {
        EXPECT_EQ(m_studio.cellAt(rect.center()), slot);
    }
}

} // namespace
} // namespace tarnovel::test
