#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "bridge/call_guard.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "host/editor/input_source.h"
#include "host/rx/module_loader.h"
#include "host/seam/host_fixture.h"
#include "host/seam/probe_module.h"
#include "platform/rx/messages.h"
#include "platform/win/message_box.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);
extern "C" int acrxGetApiVersion();

namespace sg::test {

using Log = std::vector<std::string>;

// A connection without a database behind it, which writes down what is done with it.
class FakeConnection : public CDBConnection {
  public:
    FakeConnection(std::string name, Log& log) : name_(std::move(name)), log_(log) {
        database_.m_nStatus = 1;
        database_.m_bOpen = true;
    }
    ~FakeConnection() override { log_.push_back("delete " + name_); }

    bool IsOpen() const override {
        if (onIsOpen) onIsOpen();
        return CDBConnection::IsOpen();
    }
    void Close() override {
        log_.push_back("close " + name_);
        if (onClose) onClose();
        database_.m_bOpen = false;
    }
    std::wstring Open(const std::wstring& file, bool exclusive, int16_t readOnly) override {
        log_.push_back("open " + name_ + " " + toUtf8(file) + (exclusive ? " exclusive" : "") +
                       " " + std::to_string(readOnly));
        return openAnswers;
    }

    void setStatus(int32_t status) { database_.m_nStatus = status; }
    void setOpen(bool open) { database_.m_bOpen = open; }

    std::wstring openAnswers;
    std::function<void()> onIsOpen, onClose;

  private:
    const std::string name_;
    Log& log_;
};

// Presses the given buttons in turn, then answers nothing, and writes down what it was shown.
class Buttons : public InputSource {
  public:
    Buttons(Log& log, std::vector<int> buttons) : log_(log), buttons_(std::move(buttons)) {}
    Answer<int> messageBox(const BoxRequest& request) override {
        if (onBox) onBox();
        log_.push_back("box " + std::to_string(request.flags) + " " + toUtf8(request.title) + ": " +
                       toUtf8(request.text));
        if (next_ == buttons_.size()) return Answer<int>::cancel();
        return Answer<int>::of(buttons_[next_++]);
    }
    std::function<void()> onBox;

  private:
    Log& log_;
    const std::vector<int> buttons_;
    size_t next_ = 0;
};

// The LISP functions (guarded ...) and (guarded-inner ...): what the probe module's do, called
// through the guard. An implementation's own result code is what counts for those.
inline std::function<int()> guarded, guardedInner;
inline int guardedImplementation() {
    return guarded();
}
inline int guardedInnerImplementation() {
    return guardedInner();
}

inline const wchar_t* const kModule = L"SwiftGate2017.arx";

// A test with a host that has the module loaded, and beside it the probe module.
class ModuleTest : public HostTest {
  protected:
    ModuleTest() {
        reset();
        probe.more = {{L"guarded", [] { return callGuard(guardedImplementation); }},
                      {L"guarded-inner", [] { return callGuard(guardedInnerImplementation); }}};
        options.staticModules = {{kModule, acrxEntryPoint}, {L"Probe.arx", probeEntryPoint}};
        options.modules = {kModule, L"Probe.arx"};
    }
    ~ModuleTest() override {
        stop();
        EXPECT_TRUE(dbInfoList().empty());
        EXPECT_EQ(currentConnection(), nullptr);
        reset();
    }

    // The documents that the entries stand for, head first.
    static Log entries() {
        Log names;
        for (const auto& entry : dbInfoList())
            names.push_back(toUtf8(entry->strDocument));
        return names;
    }
    static DB_INFO& entryOf(const wchar_t* document) {
        for (const auto& entry : dbInfoList()) {
            if (entry->strDocument == document) return *entry;
        }
        ADD_FAILURE() << "no entry for " << toUtf8(document);
        static DB_INFO none;
        return none;
    }
    // Gives a drawing a database, as a connect would.
    static void connect(const wchar_t* document, CDBConnection* connection, const wchar_t* database,
                        bool readOnly = false) {
        DB_INFO& entry = entryOf(document);
        entry.pConnection = connection;
        entry.strDatabase = database;
        entry.bReadOnly = readOnly;
    }
    static std::string current() {
        return toUtf8(currentDatabaseName()) + " " + std::to_string(currentReadOnly());
    }
    void activate(const wchar_t* document) {
        for (const auto& each : documents().all()) {
            if (each->fileName() == std::wstring_view(document)) {
                documents().activateDocument(each.get());
                return;
            }
        }
        ADD_FAILURE() << "no drawing " << toUtf8(document);
    }

    Log log;

  private:
    static void reset() {
        setCurrentDatabase(nullptr, L"", 0);
        clearLastErrorText();
        dbInfoList().clear();
        probe = {};
        guarded = guardedInner = nullptr;
    }
};

}  // namespace sg::test
