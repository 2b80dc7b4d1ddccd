#include "host/system/screen.h"

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

class ScreenTest : public FolderTest {
  protected:
    void connector(const std::string& name, const std::string& enabled, const std::string& modes) {
        write(name + "/enabled", enabled);
        write(name + "/modes", modes);
    }
    const WithEnvironment unset_{"SWIFTGATE_SCREEN", ""};
};

TEST_F(ScreenTest, TheFirstScreenThatIsSwitchedOn) {
    EXPECT_EQ(screenSize(path()), (ScreenSize{1920, 1080}));
    write("card0/enabled", "enabled\n");  // the card itself
    write("card0/modes", "1x1\n");
    connector("card0-DP-1", "disabled\n", "800x600\n");
    connector("card0-HDMI-A-1", "enabled\n", "");
    EXPECT_EQ(screenSize(path()), (ScreenSize{1920, 1080}));
    connector("card1-eDP-1", "enabled\n", "2560x1440i\n1024x768\n");
    EXPECT_EQ(screenSize(path()), (ScreenSize{2560, 1440}));
}

TEST_F(ScreenTest, TheEnvironmentCountsFirst) {
    connector("card0-DP-1", "enabled", "800x600");
    for (const char* const wrong : {"x", "12", "12x", "x12", "0x5", "-3x4", "99999999999x1"}) {
        const WithEnvironment set("SWIFTGATE_SCREEN", wrong);
        EXPECT_EQ(screenSize(path()), (ScreenSize{800, 600})) << wrong;
    }
    const WithEnvironment set("SWIFTGATE_SCREEN", "1600x1200");
    EXPECT_EQ(screenSize(path()), (ScreenSize{1600, 1200}));
}

}  // namespace
}  // namespace sg
