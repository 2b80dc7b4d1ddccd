#include <gtest/gtest.h>

#include <memory>

#include "host/system/date_time.h"
#include "host/system/mutexes.h"
#include "platform/dao/exception.h"

namespace sg {
namespace {

TEST(NamedMutexesTest, OneOfEachName) {
    NamedMutexes mutexes;
    const auto first = mutexes.create(L"Quillon");
    EXPECT_EQ(first.error, 0u);
    const auto second = mutexes.create(L"Quillon");
    EXPECT_EQ(second.mutex, first.mutex);
    EXPECT_EQ(second.error, uint32_t{ERROR_ALREADY_EXISTS});
    EXPECT_NE(mutexes.create(L"quillon").mutex, first.mutex);
    EXPECT_NE(mutexes.create(nullptr).mutex, mutexes.create(L"").mutex);
    EXPECT_EQ(mutexes.create(L"").error, 0u);
}

TEST(DateTimeTest, KnownDays) {
    // 9:58:35 PM of the last day of 1999, the example that users of the variable know.
    const DateTime known{1999, 12, 31, 21, 58, 35, 0};
    EXPECT_NEAR(julianDate(known), 2451544.91568287, 1e-7);
    EXPECT_NEAR(calendarDate(known), 19991231.215835, 1e-7);
    EXPECT_EQ(julianDate({2017, 1, 31, 12, 0, 0, 0}), 2457785.5);
    EXPECT_EQ(julianDate({2016, 3, 1, 0, 0, 0, 0}) - julianDate({2016, 2, 28, 0, 0, 0, 0}), 2);
    const DateTime start = universalTime(std::chrono::system_clock::time_point{});
    EXPECT_EQ(julianDate(start), 2440588);
    const DateTime before =
        universalTime(std::chrono::system_clock::from_time_t(0) - std::chrono::milliseconds(1));
    EXPECT_EQ(before.year, 1969);
    EXPECT_EQ(before.millisecond, 999);
}

TEST(ExceptionTest, MessagesAreCutToTheBuffer) {
    const struct {
        CException* exception;
        bool hasText;
        std::wstring whole;
    } cases[] = {
        {new CException, false, L""},
        {new CMemoryException, true, L"Out of memory."},
        {new CInvalidArgException, true, L"Encountered an improper argument."},
        {new CDaoException(3051, L"Cannot open it."), true, L"Cannot open it."},
    };
    for (const auto& [exception, hasText, whole] : cases) {
        for (const unsigned capacity : {1u, 5u, 100u}) {
            std::wstring buffer(101, L'#');
            EXPECT_EQ(exception->GetErrorMessage(buffer.data(), capacity), hasText);
            EXPECT_EQ(std::wstring(buffer.c_str()), whole.substr(0, capacity - 1));
            EXPECT_EQ(buffer[capacity], L'#');
        }
        wchar_t untouched = L'#';
        exception->GetErrorMessage(&untouched, 0);
        EXPECT_EQ(untouched, L'#');
        exception->Delete();
    }
}

TEST(ExceptionTest, AreThrownByPointer) {
    try {
        AfxThrowInvalidArgException();
    } catch (CException* exception) {
        EXPECT_NE(dynamic_cast<CInvalidArgException*>(exception), nullptr);
        exception->Delete();
    }
    EXPECT_THROW(
        {
            try {
                AfxThrowMemoryException();
            } catch (CMemoryException* exception) {
                exception->Delete();
                throw 1;
            }
        },
        int);
    const auto error = std::make_unique<CDaoException>(3051, L"text");
    EXPECT_EQ(error->m_pErrorInfo->m_lErrorCode, 3051);
}

}  // namespace
}  // namespace sg
