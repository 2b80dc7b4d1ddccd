#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The rules by which a report to the support desk is named, addressed and written.
namespace sg {

// What kind of report it is, in LISP's numbers. Any other number is a report of its own kind.
enum : int32_t {
    kReportProject = 0,
    kReportBug = 1,
    kReportMasterDatabases = 4,
    kReportStandardsDatabases = 5,
};

struct ReportMode {
    const wchar_t* dialogTitle;
    bool attachmentsCanBeEdited;
    const wchar_t* subjectPrefix;
};
ReportMode reportMode(int32_t mode);

// "(3 files)"; empty for none.
std::wstring attachmentCountText(size_t count);

// The prefix, and of the text its first sentence or line, at most `limit` 16-bit units. Lines of
// the text end with CR LF, as a multi-line edit control has them.
std::wstring BuildSubject(std::wstring_view prefix, std::wstring_view text, size_t limit);

std::wstring BuildBody(std::wstring_view phone, std::wstring_view text,
                       std::wstring_view systemInfo);

// Why an address is refused.
enum : int {
    kAddressGood = 0,
    kAddressInvalid = 1,
    kAddressMissing = 2,
    kAddressesDiffer = 3,
    kAddressOfSupport = 4,
};

// `address` and its repetition, both trimmed; `supportDomain` is the support desk's own.
int ValidateAddresses(std::wstring_view address, std::wstring_view repetition,
                      std::wstring_view supportDomain);

// kAddressGood, kAddressInvalid or kAddressOfSupport. Letters, digits, "_", ".", "-" and one "@"
// make an address; of its parts nothing else is asked but a "." behind the "@".
int CheckAddress(std::wstring_view address, std::wstring_view supportDomain);

// What a message box says about an address that is refused.
const wchar_t* addressRefusal(int code);

// Trimmed, without the characters that file names cannot have.
std::wstring CleanFileName(std::wstring_view name);

// True when a file can have this name on the system of origin, and none of its characters leads to
// another folder.
bool isFileName(std::wstring_view name);

// "name suffix.zip", with the name cleaned and the suffix as it stands.
std::wstring BuildArchiveName(std::wstring_view name, std::wstring_view suffix);

// What the C library's formatted print writes when `format` has no arguments with it: a directive
// ("%s", "%5.2f", "%n") writes nothing, "%%" a percent sign, and a percent sign that begins no
// directive itself.
std::wstring printedWithoutArguments(std::wstring_view format);

}  // namespace sg
