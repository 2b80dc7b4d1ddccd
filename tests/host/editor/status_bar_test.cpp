#include "host/editor/status_bar.h"

#include <gmock/gmock.h>

#include <climits>

#include "base/encoding.h"

namespace sg {
namespace {

using testing::ElementsAre;

class StatusBarTest : public testing::Test {
  protected:
    class Recorder final : public ProgressDisplay {
      public:
        explicit Recorder(std::vector<std::string>& log) : log_(log) {}
        void begin(const std::wstring& label) override { log_.push_back("begin " + toUtf8(label)); }
        void show(uint64_t done, uint64_t total) override {
            log_.push_back(std::to_string(done) + "/" + std::to_string(total));
        }
        void hide() override { log_.push_back("hide"); }

      private:
        std::vector<std::string>& log_;
    };

    std::vector<std::string> log_;
    StatusBar bar_;
};

TEST_F(StatusBarTest, PositionsAreCutToTheRange) {
    ASSERT_TRUE(bar_.start(L"a", 10, 20));
    const std::pair<int, int> moves[] = {{12, 12}, {9, 10},  {21, 20},      {-3, 20},
                                         {15, 15}, {-3, 18}, {INT_MIN, 20}, {INT_MAX, 20}};
    for (const auto& [position, reached] : moves) {
        EXPECT_TRUE(bar_.move(position));
        EXPECT_EQ(bar_.meter()->position, reached) << position;
    }
    ASSERT_TRUE(bar_.start(L"b", -10, 10));
    EXPECT_TRUE(bar_.move(-5));
    EXPECT_EQ(bar_.meter()->position, -5) << "a position of this range";
}

TEST_F(StatusBarTest, WithoutAMeterNothingMoves) {
    EXPECT_FALSE(bar_.move(1));
    EXPECT_FALSE(bar_.start(L"a", 2, 1));
    EXPECT_FALSE(bar_.meter());
    EXPECT_TRUE(bar_.start(L"a", 1, 1));
    bar_.restore();
    bar_.restore();
    EXPECT_FALSE(bar_.move(1));
}

TEST_F(StatusBarTest, TheDisplayFollows) {
    bar_.setDisplay(std::make_unique<Recorder>(log_));
    bar_.start(L"ducts", INT_MIN, INT_MAX);
    bar_.move(INT_MAX);
    bar_.start(L"pipes", 5, 10);
    bar_.move(7);
    bar_.restore();
    EXPECT_THAT(log_, ElementsAre("hide", "begin ducts", "4294967295/4294967295", "hide",
                                  "begin pipes", "2/5", "hide"));
}

}  // namespace
}  // namespace sg
