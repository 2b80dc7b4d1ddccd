#include "platform/db/color.h"

#include <gtest/gtest.h>

namespace {

TEST(Color, IndexesShowAsTheTableSays) {
    const struct {
        uint16_t index;
        uint32_t rgb;
    } cases[] = {
        {1, 0xFF0000},   {2, 0xFFFF00},   {5, 0x0000FF},   {7, 0xFFFFFF},   {8, 0x808080},
        {10, 0xFF0000},  {11, 0xFF7F7F},  {12, 0xA50000},  {13, 0xA55252},  {15, 0x7F3F3F},
        {16, 0x4C0000},  {18, 0x260000},  {19, 0x261313},  {20, 0xFF3F00},  {21, 0xFF9F7F},
        {22, 0xA52900},  {23, 0xA56752},  {29, 0x261713},  {42, 0xA57C00},  {90, 0x00FF00},
        {130, 0x00FFFF}, {170, 0x0000FF}, {240, 0xFF003F}, {250, 0x333333}, {255, 0xFFFFFF},
    };
    for (const auto& c : cases) {
        AcCmColor color;
        ASSERT_TRUE(color.setColorIndex(c.index));
        EXPECT_EQ(color.rgb(), c.rgb) << c.index;
        EXPECT_EQ(color.colorIndex(), c.index);
    }
}

TEST(Color, TrueColoursHaveTheNearestIndex) {
    AcCmColor color;
    color.setRGB(254, 1, 0);
    EXPECT_EQ(color.colorIndex(), 1);
    EXPECT_EQ(color.green(), 1);
    color.setRGB(0xA5, 0x53, 0x52);
    EXPECT_EQ(color.colorIndex(), 13);
    EXPECT_TRUE(color.setColorIndex(0));
    EXPECT_TRUE(color.isByBlock());
    EXPECT_TRUE(color.setColorIndex(256));
    EXPECT_TRUE(color.isByLayer());
    EXPECT_FALSE(color.setColorIndex(257));
    EXPECT_TRUE(color.isByLayer());
}

}  // namespace
