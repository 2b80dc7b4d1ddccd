#include "host/jet/format/error.h"

#include <gtest/gtest.h>

#include "host/jet/format/error_texts.h"

namespace sg::jet {
namespace {

TEST(JetErrorTest, NamesGoIntoTheirPlaces) {
    EXPECT_EQ(errorText(3021), L"No current record.");
    EXPECT_EQ(
        errorText(3078, {L"Rooms"}).substr(0, 82),
        L"The Microsoft Jet database engine cannot find the input table or query 'Rooms'. Ma");
    EXPECT_EQ(errorText(3380, {L"Rooms", L"Id"}), L"Field 'Id' already exists in table 'Rooms'.");
    EXPECT_EQ(errorText(3260, {L"ann", L"PC7"}),
              L"Could not update; currently locked by user 'ann' on machine 'PC7'.");
    EXPECT_EQ(errorText(3024), L"Could not find file ''.");
    EXPECT_EQ(errorText(3316, {L"Too | many"}), L"Too | many");
    EXPECT_EQ(errorText(2), L"Reserved error (2).");
}

TEST(JetErrorTest, EveryNumberThatTheEngineNamesHasAText) {
    for (const int code :
         {3010, 3012, 3021, 3022, 3024, 3026, 3043, 3044, 3045, 3049, 3051, 3061, 3078, 3163,
          3167, 3191, 3197, 3200, 3201, 3260, 3265, 3270, 3283, 3284, 3314, 3315, 3343, 3372,
          3376, 3380, 3421, 3009, 3046, 3158, 3164, 3186, 3187, 3188, 3189, 3202, 3211, 3212,
          3218, 3225, 3261, 3262, 3624, 3001, 3031, 3428, 3011, 3159, 3219, 3251}) {
        EXPECT_NE(errorTemplate(code), nullptr) << code;
    }
}

TEST(JetErrorTest, TheLayerNearestToTheFaultHasTheSay) {
    Error error(Damaged, {}, {.page = 7, .detail = L"why"});
    error.addPage(9);
    error.addTable(L"Rooms");
    error.addTable(L"Other");
    error.addFile(L"plan.mdb");
    EXPECT_EQ(error.describe().substr(0, 35), L"plan.mdb: table Rooms: page 7: A pr");
    EXPECT_TRUE(error.describe().ends_with(L" (why)"));
    EXPECT_TRUE(std::string(error.what()).starts_with("3428: plan.mdb: "));
}

}  // namespace
}  // namespace sg::jet
