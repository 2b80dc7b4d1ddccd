#include "database/driver_offer.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "module/module_fixture.h"
#include "platform/rx/rxclass.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DriverOfferTest : public ModuleTest {
  protected:
    DriverOfferTest() {
        write("shell", "#!/bin/sh\necho \"$@\" >> '" + (folder_ / "opened").string() +
                           "'\nexit $(cat '" + (folder_ / "status").string() + "')\n");
        chmod((folder_ / "shell").c_str(), 0755);
        write("opened");
    }
    // A host in which boxes get these answers; what is printed goes to the log in its place among
    // them.
    void startWith(std::vector<int> buttons, int shellStatus) {
        write("status", std::to_string(shellStatus));
        make();
        const auto boxes = std::make_shared<Buttons>(log, std::move(buttons));
        boxes->onBox = [this] { logPrinted(); };
        host().setInput({boxes});
        host().start();
        printed();
        errors();
    }
    void logPrinted() {
        const std::string text = printed();
        if (!text.empty()) log.push_back("print " + text);
    }
    const WithEnvironment shell_{"SWIFTGATE_SHELL", (folder_ / "shell").string()};
};

struct Offer {
    void (*make)();
    std::string question, installer;
};
const Offer kOffers[] = {
    {offerDatabaseDrivers,
     "Error loading database drivers.\nWould you like to download a fix to this error?",
     "QNRepairDrivers.exe"},
    {offerDialogComponents,
     "Dialog box could not be created.\nComponents need to be installed.\n"
     "Would you like to download a fix to this error?",
     "QNComponents.exe"},
};

std::string addressOf(const Offer& offer) {
    return "https://downloads.quillon.example/repair/" + offer.installer;
}

TEST_F(DriverOfferTest, AcceptedAndOpened) {
    for (const Offer& offer : kOffers) {
        startWith({IDYES, IDOK}, 0);
        offer.make();
        logPrinted();
        EXPECT_THAT(
            log, ElementsAre("box 20 Quillon Error: " + offer.question,
                             "print \nDownloading " + addressOf(offer),
                             "box 0 Quillon Error: Finish downloading " + offer.installer +
                                 ".\nClose AutoCAD.\nRun " + offer.installer +
                                 ".\nRestart AutoCAD.\n\nIf you continue to have problems, contact "
                                 "Quillon Software technical support.\n    1-800-555-0100"));
        EXPECT_EQ(read("opened"), "open " + addressOf(offer) + "\n");
        stop();
        log.clear();
        write("opened");
    }
}

TEST_F(DriverOfferTest, AcceptedAndNotOpened) {
    for (const Offer& offer : kOffers) {
        for (const int status : {1, 31, 32}) {
            startWith({IDYES, IDOK}, status);
            offer.make();
            logPrinted();
            EXPECT_THAT(
                log, ElementsAre("box 20 Quillon Error: " + offer.question,
                                 "print \nError downloading " + addressOf(offer) +
                                     "\nContact Quillon Software technical support: 1-800-555-0100",
                                 "box 0 Quillon Error: Error downloading " + offer.installer +
                                     ".\nContact Quillon Software technical support.\n"
                                     "1-800-555-0100"));
            stop();
            log.clear();
        }
    }
    startWith({IDYES, IDOK}, 33);
    offerDatabaseDrivers();
    EXPECT_THAT(log.back(), HasSubstr("Finish downloading")) << "above 32 is a success";
}

TEST_F(DriverOfferTest, Declined) {
    for (const Offer& offer : kOffers) {
        for (const int button : {int{IDNO}, int{IDCANCEL}}) {
            startWith({button}, 0);
            offer.make();
            logPrinted();
            EXPECT_THAT(log, ElementsAre("box 20 Quillon Error: " + offer.question));
            EXPECT_EQ(read("opened"), "");
            stop();
            log.clear();
        }
    }
}

TEST_F(DriverOfferTest, DialogResults) {
    startWith({IDNO, IDNO, IDNO, IDNO, IDNO, IDNO, IDNO}, 0);
    const struct {
        intptr_t result;
        bool offers;
    } cases[] = {{-1, true}, {0, false}, {1, false}, {2, false},
                 {3, true},  {4, false}, {-2, false}};
    for (const auto& c : cases) {
        log.clear();
        EXPECT_EQ(checkDialogResult(c.result), c.result);
        ASSERT_EQ(log.size(), c.offers ? 1u : 0u) << c.result;
        if (c.offers) {
            EXPECT_EQ(log[0], "box 20 Quillon Error: " + kOffers[1].question);
        }
    }
}

// The engine does not start: the offer is made, and the module is not there.
TEST_F(DriverOfferTest, AtInitialisationOfTheModule) {
    options.failEngine = true;
    for (const int button : {int{IDYES}, int{IDNO}}) {
        write("status", "0");
        make();
        host().setInput({std::make_shared<Buttons>(log, std::vector<int>{button, IDOK})});
        host().start();
        ASSERT_EQ(log.size(), button == IDYES ? 2u : 1u);
        EXPECT_EQ(log[0], "box 20 Quillon Error: " + kOffers[0].question);
        EXPECT_THAT(errors(), HasSubstr("cannot load module \"SwiftGate2017.arx\": it refuses to "
                                        "load: its entry point answered 3 to kInitAppMsg"));
        EXPECT_THAT(host().modules().loadedNames(), ElementsAre(L"Probe.arx"));
        EXPECT_EQ(eval("(sg_count)"), "; error: no function definition: SG_COUNT");
        EXPECT_THAT(entries(), IsEmpty());
        documents().create();
        EXPECT_THAT(entries(), IsEmpty()) << "no further message is sent";
        EXPECT_EQ(printed(), "");
        stop();
        log.clear();
    }
}

}  // namespace
}  // namespace sg
