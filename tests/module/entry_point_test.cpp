#include <gmock/gmock.h>

#include "module/module_fixture.h"
#include "platform/win/exceptions.h"
#include "platform/win/system.h"

// What leaves the module's message handlers by an exception.
namespace sg {
namespace {

using namespace test;
using testing::HasSubstr;
using testing::IsEmpty;

class TextException : public CException {
  public:
    TextException(std::wstring text, Log& log) : text_(std::move(text)), log_(log) {}
    ~TextException() override { log_.push_back("deleted"); }

  protected:
    std::wstring message() const override { return text_; }

  private:
    const std::wstring text_;
    Log& log_;
};

class EntryPointTest : public ModuleTest {
  protected:
    EntryPointTest() : connection_("c", closed_) {
        start();
        connect(L"Drawing1.dwg", &connection_, L"c.mdb");
        printed();
        errors();
    }
    ~EntryPointTest() override {
        setCurrentDatabase(nullptr, L"", 0);
        for (const auto& entry : dbInfoList())
            entry->pConnection = nullptr;
    }
    AcRx::AppRetCode closeDrawing() { return acrxEntryPoint(AcRx::kUnloadDwgMsg, nullptr); }

    Log closed_;
    FakeConnection connection_;
};

TEST_F(EntryPointTest, AFrameworkExceptionIsPrintedAndDeleted) {
    const struct {
        std::wstring text;
        std::string printed;
    } cases[] = {
        {L"100% of it", "100% of it"},
        {L"", ""},
        {std::wstring(2000, L'x'), std::string(999, 'x')},
    };
    for (const auto& c : cases) {
        log.clear();
        connection_.onClose = [&] { throw new TextException(c.text, log); };
        SetLastError(5);
        EXPECT_EQ(closeDrawing(), AcRx::kRetError);
        EXPECT_EQ(printed(), "\nSwift Gate General Error:  " + c.printed);
        EXPECT_EQ(log, Log{"deleted"});
        EXPECT_EQ(currentConnection(), &connection_) << "the steps after it are not done";
        EXPECT_EQ(entries(), Log{"Drawing1.dwg"});
    }
}

TEST_F(EntryPointTest, AnythingElseShowsTheSystemsError) {
    const struct {
        uint32_t error;
        const char* printed;
    } cases[] = {
        {0, "\nSwift Gate error.\n"},
        {5, "\nSystem error 5.\n"},
        {0xFFFFFFFF, "\nSystem error 4294967295.\n"},
    };
    for (const auto& c : cases) {
        connection_.onClose = [&] {
            SetLastError(c.error);
            throw 1;
        };
        EXPECT_EQ(closeDrawing(), AcRx::kRetError);
        EXPECT_EQ(printed(), c.printed);
    }
}

TEST_F(EntryPointTest, TheHostClosesTheDrawingAllTheSame) {
    connection_.onClose = [&] { throw new TextException(L"no", log); };
    documents().create();
    activate(L"Drawing1.dwg");
    documents().close(active());
    EXPECT_EQ(printed(), "\nSwift Gate General Error:  no");
    EXPECT_THAT(errors(), HasSubstr("its entry point answered an error to kUnloadDwgMsg"));
    EXPECT_EQ(toUtf8(active().fileName()), "Drawing2.dwg");
}

TEST_F(EntryPointTest, UnknownMessagesChangeNothing) {
    selectDocumentDatabase();
    const size_t functions = host().modules().loadedNames().size();
    for (const int message : {0, 5, 6, 7, 8, 13, 14, 20, 21, -1, 1000}) {
        EXPECT_EQ(acrxEntryPoint(static_cast<AcRx::AppMsgCode>(message), nullptr), AcRx::kRetOK);
    }
    EXPECT_EQ(entries(), Log{"Drawing1.dwg"});
    EXPECT_EQ(currentConnection(), &connection_);
    EXPECT_EQ(host().modules().loadedNames().size(), functions);
    EXPECT_EQ(printed() + errors(), "");
    EXPECT_THAT(closed_, IsEmpty());
}

TEST_F(EntryPointTest, InterfaceVersion) {
    EXPECT_EQ(acrxGetApiVersion(), 2017);
}

}  // namespace
}  // namespace sg
