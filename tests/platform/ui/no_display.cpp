#include <cstdlib>

// Tests have no display, whatever the machine has.
namespace {

const int set = setenv("QT_QPA_PLATFORM", "offscreen", 1);

}  // namespace
