#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>

// Widgets need an application; it has no display, whatever the machine has.
namespace {

class Application final : public testing::Environment {
  public:
    void SetUp() override {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        static int count = 1;
        static char name[] = "test_grid";
        static char* words[] = {name, nullptr};
        // Never destroyed, as in the program.
        new QApplication(count, words);
    }
};

const testing::Environment* const environment = testing::AddGlobalTestEnvironment(new Application);

}  // namespace
