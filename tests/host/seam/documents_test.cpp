#include "host/editor/documents.h"

#include <gmock/gmock.h>

#include "host/seam/host_fixture.h"
#include "host/seam/probe_module.h"
#include "platform/db/database.h"

namespace sg {
namespace {

using test::currentDrawing;
using test::probe;
using testing::ElementsAre;
using testing::IsEmpty;

class DocumentsTest : public test::HostTest {
  protected:
    DocumentsTest() {
        probe = {};
        options.staticModules = {{L"Probe.arx", test::probeEntryPoint}};
        options.modules = {L"Probe.arx"};
    }
    ~DocumentsTest() override {
        stop();
        probe = {};
    }

    // The drawings as the iterator lists them.
    std::vector<std::string> listed() {
        std::vector<std::string> names;
        const std::unique_ptr<AcApDocumentIterator> each(
            acDocManagerPtr()->newAcApDocumentIterator());
        for (; !each->done(); each->step())
            names.push_back(toUtf8(each->document()->fileName()));
        EXPECT_EQ(each->document(), nullptr);
        each->step();
        EXPECT_TRUE(each->done());
        return names;
    }
};

TEST_F(DocumentsTest, NewDrawingsHaveNamesOfTheirOwn) {
    start();
    EXPECT_EQ(eval("(host-new-drawing)"), "\"Drawing2.dwg\"");
    documents().close(active());
    EXPECT_EQ(eval("(host-new-drawing)"), "\"Drawing3.dwg\"") << "a name is not used again";
    EXPECT_THAT(listed(), ElementsAre("Drawing1.dwg", "Drawing3.dwg"));
    EXPECT_STREQ(active().docTitle(), L"Drawing3.dwg");
    EXPECT_FALSE(active().isTitled());
    std::wstring file = L"before";
    EXPECT_EQ(active().database()->getFilename(file), Acad::eFileNotFound);
    EXPECT_EQ(file, L"");
}

TEST_F(DocumentsTest, ClosingActivatesTheOneOpenedBefore) {
    start();
    for (int i = 0; i < 3; ++i)
        documents().create();
    const struct {
        const char *active, *closed, *next;
    } steps[] = {
        {"Drawing3.dwg", "Drawing3.dwg", "Drawing2.dwg"},
        {"Drawing4.dwg", "Drawing1.dwg", "Drawing4.dwg"},
        {"Drawing2.dwg", "Drawing2.dwg", "Drawing4.dwg"},
    };
    for (const auto& step : steps) {
        const std::string name(step.active);
        EXPECT_EQ(eval("(host-activate-drawing \"" + name + "\")"), "\"" + name + "\"");
        EXPECT_EQ(eval(std::string("(host-close-drawing \"") + step.closed + "\")"), "T");
        EXPECT_EQ(toUtf8(active().fileName()), step.next);
        EXPECT_EQ(documents().current(), documents().active());
    }
    documents().close(active());
    EXPECT_EQ(documents().active(), nullptr);
    EXPECT_EQ(acDocManagerPtr()->curDocument(), nullptr);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), nullptr);
    EXPECT_EQ(acDocManagerPtr()->document(nullptr), nullptr);
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(DocumentsTest, MessagesComeWithTheirDrawingCurrentAndTheActiveOneBack) {
    std::vector<std::string> closing;
    probe.onMessage = [&](AcRx::AppMsgCode message) {
        if (message == AcRx::kUnloadDwgMsg) {
            closing = listed();
            closing.push_back("active " +
                              toUtf8(acDocManagerPtr()->mdiActiveDocument()->fileName()));
        }
        return AcRx::kRetOK;
    };
    start();
    documents().create();
    eval("(host-close-drawing \"Drawing1.dwg\")");
    EXPECT_THAT(closing, ElementsAre("Drawing1.dwg", "Drawing2.dwg", "active Drawing2.dwg"))
        << "the drawing that is being closed is still listed";
    EXPECT_EQ(currentDrawing(), "Drawing2.dwg");
    documents().create();
    stop();
    EXPECT_THAT(probe.messages, ElementsAre("init", "load Drawing1.dwg", "load Drawing2.dwg",
                                            "unload Drawing1.dwg", "load Drawing3.dwg",
                                            "unload Drawing3.dwg", "unload Drawing2.dwg", "end"));
}

TEST_F(DocumentsTest, EachDrawingHasVariablesOfItsOwn) {
    start();
    eval("(setq a 1) (defun f () 1)");
    eval("(host-new-drawing)");
    EXPECT_EQ(eval("(list a (type f))"), "(nil nil)");
    eval("(setq a 2)");
    // A program goes on in the variables that it began with.
    EXPECT_EQ(eval("(host-activate-drawing \"Drawing1.dwg\") (list a (getvar \"DWGNAME\"))"),
              "(2 \"Drawing1.dwg\")");
    EXPECT_EQ(eval("a"), "1");
}

TEST_F(DocumentsTest, LocksCountAndTheStrongestShows) {
    start();
    AcApDocManager& manager = *acDocManagerPtr();
    EXPECT_EQ(active().lockMode(), AcAp::kNone);
    const AcAp::DocLockMode taken[] = {AcAp::kRead, AcAp::kWrite, AcAp::kAutoWrite, AcAp::kXWrite};
    const AcAp::DocLockMode shown[] = {AcAp::kRead, AcAp::kWrite, AcAp::kWrite, AcAp::kXWrite};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(manager.lockDocument(&active(), taken[i]), Acad::eOk);
        EXPECT_EQ(active().lockMode(), shown[i]) << i;
        EXPECT_EQ(active().lockCount(), i + 1);
    }
    for (int i = 4; i-- > 0;) {
        EXPECT_EQ(active().lockMode(), shown[i]) << i;
        EXPECT_EQ(manager.unlockDocument(&active()), Acad::eOk);
    }
    EXPECT_EQ(manager.unlockDocument(&active()), Acad::eLockViolation);
    EXPECT_EQ(manager.unlockDocument(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(manager.lockDocument(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(manager.lockDocument(&active(), AcAp::kNone), Acad::eInvalidInput);
    EXPECT_EQ(active().lockCount(), 0);
}

TEST_F(DocumentsTest, DrawingsInUseAreNotClosed) {
    start();
    documents().create();
    EXPECT_TRUE(active().isQuiescent());
    bool quiescent = true;
    probe.outer = [&] {
        quiescent = active().isQuiescent();
        return RSRSLT;
    };
    type("(outer)");
    EXPECT_FALSE(quiescent);
    EXPECT_TRUE(active().isQuiescent());

    EXPECT_TRUE(type("(host-close-drawing)").failed);
    EXPECT_THAT(errors(),
                testing::HasSubstr("; error: a program is running in the drawing: Drawing2.dwg"));
    acDocManagerPtr()->lockDocument(&documentAt(0));
    EXPECT_EQ(eval("(host-close-drawing \"drawing1.dwg\")"),
              "; error: the drawing is locked: Drawing1.dwg");
    acDocManagerPtr()->unlockDocument(&documentAt(0));
    EXPECT_EQ(eval("(host-close-drawing \"drawing9.dwg\")"),
              "; error: no such drawing is open: drawing9.dwg");
    EXPECT_EQ(eval("(host-close-drawing \"drawing1.dwg\")"), "T");
}

TEST_F(DocumentsTest, TheWorkingDatabaseFollowsTheCurrentDrawingUnlessSet) {
    start();
    Document& first = active();
    Document& second = documents().create();
    AcDbHostApplicationServices& services = *acdbHostApplicationServices();
    EXPECT_EQ(services.workingDatabase(), second.database());
    EXPECT_EQ(acDocManagerPtr()->document(first.database()), &first);
    services.setWorkingDatabase(first.database());
    EXPECT_EQ(services.workingDatabase(), first.database());
    EXPECT_EQ(acDocManagerPtr()->curDocument(), &second);
    documents().withCurrent(first, [&] {
        EXPECT_EQ(services.workingDatabase(), first.database());
        services.setWorkingDatabase(second.database());
    });
    EXPECT_EQ(services.workingDatabase(), first.database()) << "as it was before";
    acDocManagerPtr()->activateDocument(&second);
    EXPECT_EQ(services.workingDatabase(), second.database());
    const AcDbDatabase orphan;
    EXPECT_EQ(acDocManagerPtr()->document(&orphan), nullptr);
}

TEST_F(DocumentsTest, TypedLinesRunAfterTheExpressionInTheirDrawing) {
    start();
    eval("(setq log nil) (host-new-drawing)");
    eval("(setq log nil)");
    Document& first = documentAt(0);
    Document& second = documentAt(1);
    probe.outer = [&] {
        AcApDocManager& manager = *acDocManagerPtr();
        EXPECT_EQ(manager.sendStringToExecute(&first, L"(princ \"B\") (princ (getvar \"DWGNAME\"))",
                                              false),
                  Acad::eOk);
        EXPECT_EQ(manager.sendStringToExecute(&second, L"(princ \"A\")\n(princ (inner))\n", false),
                  Acad::eOk);
        EXPECT_EQ(acDocManagerPtr()->curDocument(), &second) << "nothing was activated";
        return RSRSLT;
    };
    probe.inner = [&] {
        acDocManagerPtr()->sendStringToExecute(&second, L"(princ \"C\")", false);
        acedRetStr(toUtf8(second.fileName()) == currentDrawing() ? L"2" : L"other");
        return RSRSLT;
    };
    type("(progn (outer) (princ \"-\"))");
    EXPECT_EQ(printed(), "-A2CBDrawing1.dwg") << "the active drawing's lines come first";
    EXPECT_EQ(documents().active(), &second);

    probe.outer = [&] {
        acDocManagerPtr()->sendStringToExecute(&first, L"(princ (getvar \"DWGNAME\"))", true);
        EXPECT_EQ(acDocManagerPtr()->mdiActiveDocument(), &first);
        return RSRSLT;
    };
    type("(outer)");
    EXPECT_EQ(printed(), "Drawing1.dwg");
    EXPECT_EQ(documents().active(), &first);
    EXPECT_EQ(acDocManagerPtr()->sendStringToExecute(nullptr, L"x"), Acad::eInvalidInput);
    EXPECT_EQ(acDocManagerPtr()->sendStringToExecute(&first, nullptr), Acad::eInvalidInput);
}

TEST_F(DocumentsTest, AnErrorInATypedLineLeavesTheOthers) {
    start();
    Document& document = active();
    acDocManagerPtr()->sendStringToExecute(&document, L"(car 1)");
    acDocManagerPtr()->sendStringToExecute(&document, L"(princ \"next\")");
    EXPECT_TRUE(type("(princ \"first \")").failed);
    EXPECT_EQ(printed(), "first next");
    acDocManagerPtr()->sendStringToExecute(&document, L"(exit)");
    acDocManagerPtr()->sendStringToExecute(&document, L"(princ \"after\")");
    EXPECT_TRUE(type("nothing").exited);
    EXPECT_EQ(document.typed.size(), 1u) << "what comes after (exit) is not run";
}

}  // namespace
}  // namespace sg
