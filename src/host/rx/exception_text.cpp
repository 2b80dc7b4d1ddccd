#include "host/rx/exception_text.h"

#include <exception>

#include "base/encoding.h"
#include "platform/win/exceptions.h"

namespace sg {

std::wstring currentExceptionText() {
    try {
        throw;
    } catch (CException* exception) {
        wchar_t text[1000] = L"";
        const bool hasText = exception->GetErrorMessage(text, 1000);
        exception->Delete();
        return hasText ? text : L"an exception without a text";
    } catch (const std::exception& exception) {
        return fromUtf8(exception.what());
    } catch (...) {
        return L"an unknown exception";
    }
}

}  // namespace sg
