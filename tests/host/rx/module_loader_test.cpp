#include "host/rx/module_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "base/encoding.h"
#include "platform/win/exceptions.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// What the entry points below see and do; they are plain functions, so it stands at file level.
struct Stage {
    ModuleLoader* loader = nullptr;
    std::vector<std::string> log;
    std::wstring loadAtInit, unloadAtEnd;
    std::function<AcRx::AppRetCode(AcRx::AppMsgCode)> first;
    AcApDocument* document = nullptr;
    bool quiet = false;
    bool unlocks = true;
};
Stage stage;

const char* shortName(AcRx::AppMsgCode message) {
    switch (message) {
        case AcRx::kInitAppMsg:
            return "init";
        case AcRx::kUnloadAppMsg:
            return "end";
        case AcRx::kLoadDwgMsg:
            return "open";
        case AcRx::kUnloadDwgMsg:
            return "close";
        default:
            return "other";
    }
}

void note(const std::string& who, AcRx::AppMsgCode message, void* packet) {
    std::string line = who + " " + shortName(message);
    if (stage.document != nullptr) {
        line += " " + std::to_string(reinterpret_cast<intptr_t>(stage.document));
    }
    if (stage.quiet) line += " quiet";
    if (stage.loader->currentModule() != packet) line += " as another module";
    stage.log.push_back(line);
    if (message == AcRx::kInitAppMsg && stage.unlocks) stage.loader->unlock(packet);
}

AcRx::AppRetCode firstModule(AcRx::AppMsgCode message, void* packet) {
    note("first", message, packet);
    if (message == AcRx::kInitAppMsg && !stage.loadAtInit.empty()) {
        stage.loader->load(stage.loadAtInit);
        if (stage.loader->currentModule() != packet) stage.log.push_back("lost the current module");
    }
    if (message == AcRx::kUnloadAppMsg && !stage.unloadAtEnd.empty()) {
        stage.loader->unload(stage.unloadAtEnd);
    }
    return stage.first ? stage.first(message) : AcRx::kRetOK;
}

AcRx::AppRetCode secondModule(AcRx::AppMsgCode message, void* packet) {
    note("second", message, packet);
    return AcRx::kRetOK;
}

AcApDocument* documentNumber(intptr_t number) {
    return reinterpret_cast<AcApDocument*>(number);
}

class ModuleLoaderTest : public testing::Test {
  protected:
    ModuleLoaderTest() {
        stage = {};
        stage.loader = &loader_;
        loader_.addStatic(L"First.arx", firstModule);
        loader_.addStatic(L"second.dbx", secondModule);
    }

    ModuleLoader::Environment environment() {
        ModuleLoader::Environment e;
        e.locate = [this](const std::wstring& name) {
            asked_.push_back(toUtf8(name));
            return ModuleLoader::Location{file_, {L"/place/one", L"/place/two"}};
        };
        e.documents = [this] { return documents_; };
        e.withDocument = [](AcApDocument* document, const std::function<void()>& body) {
            stage.document = document;
            body();
            stage.document = nullptr;
        };
        e.whileLoading = [](const std::function<void()>& body) {
            const bool before = stage.quiet;
            stage.quiet = true;
            body();
            stage.quiet = before;
        };
        e.reportFailure = [this](const std::wstring& text) { failures_.push_back(toUtf8(text)); };
        e.released = [this](const Module& module) { released_.push_back(toUtf8(module.name())); };
        return e;
    }

    std::vector<AcApDocument*> documents_;
    std::vector<std::string> asked_, failures_, released_;
    std::wstring file_;
    ModuleLoader loader_{environment()};
};

TEST_F(ModuleLoaderTest, MessagesOfAWholeLife) {
    documents_ = {documentNumber(1), documentNumber(2)};
    EXPECT_TRUE(loader_.load(L"first"));
    EXPECT_TRUE(loader_.load(L"C:\\modules\\FIRST.ARX")) << "loaded already";
    loader_.documentOpened(documentNumber(3));
    loader_.documentClosing(documentNumber(1));
    documents_ = {documentNumber(2)};
    EXPECT_TRUE(loader_.unload(L"First.arx"));
    EXPECT_THAT(stage.log,
                ElementsAre("first init quiet", "first open 1 quiet", "first open 2 quiet",
                            "first open 3 quiet", "first close 1", "first close 2", "first end"));
    EXPECT_THAT(released_, ElementsAre("First.arx"));
    EXPECT_THAT(loader_.loadedNames(), IsEmpty());
    EXPECT_EQ(loader_.currentModule(), nullptr);
}

TEST_F(ModuleLoaderTest, ACompanionLoadedAtInitPrecedesAndIsUnloadedByItsOwner) {
    stage.loadAtInit = L"Second.dbx";
    stage.unloadAtEnd = L"second.dbx";
    documents_ = {documentNumber(1)};
    EXPECT_TRUE(loader_.load(L"First.arx"));
    EXPECT_THAT(loader_.loadedNames(), ElementsAre(L"second.dbx", L"First.arx"));
    stage.log.clear();
    loader_.unloadAll();
    EXPECT_THAT(stage.log,
                ElementsAre("first close 1", "first end", "second close 1", "second end"));
    EXPECT_THAT(released_, ElementsAre("second.dbx", "First.arx"));
}

TEST_F(ModuleLoaderTest, AModuleThatLoadsItselfIsNotEnteredTwice) {
    stage.loadAtInit = L"first.arx";
    EXPECT_TRUE(loader_.load(L"First.arx"));
    EXPECT_THAT(stage.log, ElementsAre("first init quiet"));
}

TEST_F(ModuleLoaderTest, RefusalAtInit) {
    stage.first = [](AcRx::AppMsgCode) { return AcRx::kRetError; };
    documents_ = {documentNumber(1)};
    const auto result = loader_.load(L"First.arx");
    EXPECT_FALSE(result);
    EXPECT_EQ(result.message,
              L"cannot load module \"First.arx\": it refuses to load: its entry point answered 3 "
              L"to kInitAppMsg");
    EXPECT_THAT(stage.log, ElementsAre("first init quiet"));
    EXPECT_THAT(released_, ElementsAre("First.arx"));
    EXPECT_EQ(loader_.find(L"First.arx"), nullptr);
    stage.first = nullptr;
    EXPECT_TRUE(loader_.load(L"First.arx")) << "a later try starts afresh";
}

TEST_F(ModuleLoaderTest, ExceptionsOutOfEntryPointsAreFailures) {
    stage.first = [](AcRx::AppMsgCode message) -> AcRx::AppRetCode {
        if (message == AcRx::kInitAppMsg) AfxThrowMemoryException();
        return AcRx::kRetOK;
    };
    EXPECT_THAT(toUtf8(loader_.load(L"First.arx").message),
                HasSubstr("failed at kInitAppMsg: Out of memory."));
    EXPECT_EQ(loader_.currentModule(), nullptr);
    EXPECT_THAT(failures_, IsEmpty()) << "the caller was told";

    stage.first = [](AcRx::AppMsgCode message) -> AcRx::AppRetCode {
        if (message == AcRx::kLoadDwgMsg) throw std::runtime_error("no table");
        if (message == AcRx::kUnloadDwgMsg) return AcRx::kRetError;
        if (message == AcRx::kUnloadAppMsg) throw 5;
        return AcRx::kRetOK;
    };
    documents_ = {documentNumber(1)};
    EXPECT_TRUE(loader_.load(L"First.arx"));
    EXPECT_TRUE(loader_.unload(L"First.arx"));
    EXPECT_THAT(
        failures_,
        ElementsAre(
            "module \"First.arx\": its entry point failed at kLoadDwgMsg: no table",
            "module \"First.arx\": its entry point answered an error to kUnloadDwgMsg",
            "module \"First.arx\": its entry point failed at kUnloadAppMsg: an unknown exception"));
    EXPECT_THAT(loader_.loadedNames(), IsEmpty());
}

TEST_F(ModuleLoaderTest, UnloadIsRefused) {
    EXPECT_THAT(toUtf8(loader_.unload(L"First.arx").message), HasSubstr("it is not loaded"));
    stage.unlocks = false;
    ASSERT_TRUE(loader_.load(L"First.arx"));
    EXPECT_THAT(toUtf8(loader_.unload(L"First.arx").message), HasSubstr("it is locked"));
    Module* const module = loader_.find(L"First.arx");
    EXPECT_FALSE(module->isMdiAware());
    EXPECT_TRUE(loader_.registerMdiAware(module));
    EXPECT_TRUE(module->isMdiAware());
    EXPECT_TRUE(loader_.unlock(module));
    {
        const ModuleLoader::Running running(loader_, *module);
        EXPECT_EQ(loader_.currentModule(), module);
        EXPECT_THAT(toUtf8(loader_.unload(L"First.arx").message), HasSubstr("is running"));
    }
    EXPECT_EQ(loader_.currentModule(), nullptr);
    EXPECT_TRUE(loader_.unload(L"First.arx"));
    EXPECT_FALSE(loader_.unlock(nullptr));
    EXPECT_FALSE(loader_.registerMdiAware(&loader_));
}

TEST_F(ModuleLoaderTest, UnloadAllTakesLockedModulesToo) {
    stage.unlocks = false;
    ASSERT_TRUE(loader_.load(L"First.arx"));
    ASSERT_TRUE(loader_.load(L"second.dbx"));
    loader_.unloadAll();
    EXPECT_THAT(released_, ElementsAre("second.dbx", "First.arx"));
}

TEST_F(ModuleLoaderTest, AMissingFileTellsWhereItWasLookedFor) {
    const auto result = loader_.load(L"sub/other");
    EXPECT_EQ(result.message,
              L"cannot load module \"sub/other\": it was not found; looked in /place/one, "
              L"/place/two");
    EXPECT_THAT(asked_, ElementsAre("sub/other", "sub/other.arx"));
    asked_.clear();
    loader_.load(L"other.dbx");
    EXPECT_THAT(asked_, ElementsAre("other.dbx"));
}

TEST_F(ModuleLoaderTest, FilesThatAreNoModules) {
    char name[] = "/tmp/swiftgate-module-XXXXXX";
    const int descriptor = mkstemp(name);
    ASSERT_GE(descriptor, 0);
    close(descriptor);
    std::ofstream(name) << "not a shared object";
    file_ = fromUtf8(name);
    EXPECT_THAT(toUtf8(loader_.load(L"text.arx").message),
                testing::AllOf(HasSubstr(name), HasSubstr("cannot load module")));
    std::remove(name);
    EXPECT_THAT(toUtf8(loader_.load(L"text.arx").message), HasSubstr("No such file"));
    EXPECT_THAT(released_, IsEmpty());
}

}  // namespace
}  // namespace sg
