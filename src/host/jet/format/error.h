#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

// What the engine throws. Every error carries the engine's public number, its text with the names
// filled in, and, where it is known, the place: file, table and page.
namespace sg::jet {

// The numbers that the engine's own code names. The texts of these and of the other public numbers
// are in error.cpp.
enum ErrorCode : int {
    InvalidArgument = 3001,
    TableExists = 3010,
    ObjectNotFound = 3011,
    ObjectExists = 3012,
    NotAnIndex = 3015,
    FieldNotFound = 3018,
    NoCurrentIndex = 3019,
    UpdateWithoutEdit = 3020,
    NoCurrentRecord = 3021,
    DuplicateKey = 3022,
    FileNotFound = 3024,
    DiskFull = 3026,
    ReadOnlyDatabase = 3027,
    InvalidPassword = 3031,
    NoTransaction = 3034,
    DiskOrNetwork = 3043,
    InvalidPath = 3044,
    FileInUse = 3045,
    RecordTooLarge = 3047,
    CannotOpenDatabase = 3049,
    CannotOpenFile = 3051,
    NullInIndex = 3058,
    Canceled = 3059,
    UnknownName = 3061,
    ExpressionSyntax = 3075,
    InputTableNotFound = 3078,
    UndefinedFunction = 3085,
    CircularReference = 3102,
    InvalidBracketing = 3126,
    InvalidBookmark = 3159,
    FieldTooSmall = 3163,
    RecordDeleted = 3167,
    ResultTooLarge = 3183,
    TooManyFields = 3190,
    FieldDefinedTwice = 3191,
    RecordChanged = 3197,
    RelatedRecordsExist = 3200,
    RelatedRecordRequired = 3201,
    InvalidOperation = 3219,
    OperationNotSupported = 3251,
    LockedByUser = 3260,
    ItemNotFound = 3265,
    PropertyNotFound = 3270,
    PrimaryKeyExists = 3283,
    IndexExists = 3284,
    NullInRequiredField = 3314,
    ZeroLengthField = 3315,
    ValidationMessage = 3316,  // the design's own text
    ValidationRule = 3317,
    QueryDamaged = 3340,
    UnrecognizedFormat = 3343,
    IndexNotFound = 3372,
    TableNotFound = 3376,
    FieldExists = 3380,
    CascadeNeedsRecord = 3396,
    CascadeNullKey = 3398,
    CascadeDuplicateKey = 3399,
    TwoCascadingUpdates = 3400,
    ObjectClosed = 3420,
    ConversionError = 3421,
    Damaged = 3428,
    TypeMismatch = 3464,
    TooManyIndexes = 3626,
};

// The engine's text for `code` with `names` put in the places it has for them: "|" and "|1" stand
// for the first name, "|2" for the second, "|3" for the third. Of the errors about locks the first
// name is the user's and the second the machine's; where a table is named too it comes first. A
// place without a name is left empty. A code that is not in the table has the text
// "Reserved error (CODE).".
SG_API std::wstring errorText(int code, const std::vector<std::wstring>& names = {});

// Where an error was met. Lower layers know the page, higher ones add table and file.
struct ErrorPlace {
    std::wstring file{};
    std::wstring table{};
    std::optional<uint32_t> page{};
    std::wstring detail{};  // what was wrong there, in words for the person who mends the file
};

class SG_API Error : public std::exception {
  public:
    explicit Error(int code, std::vector<std::wstring> names = {}, ErrorPlace place = {});

    int code() const noexcept { return code_; }
    const std::wstring& text() const noexcept { return text_; }
    const std::vector<std::wstring>& names() const noexcept { return names_; }
    const ErrorPlace& place() const noexcept { return place_; }

    // Fill in what is not known yet and leave the rest, so that the layer that is nearest to the
    // fault has the say. For use in `catch (Error& e) { e.addPage(7); throw; }`.
    void addFile(std::wstring_view file);
    void addTable(std::wstring_view table);
    void addPage(uint32_t page);

    // One line: "FILE: table T: page N: TEXT (DETAIL)", without the parts that are not known.
    std::wstring describe() const;

    // describe() in UTF-8, preceded by the number.
    const char* what() const noexcept override { return what_.c_str(); }

  private:
    void refresh();

    int code_;
    std::vector<std::wstring> names_;
    std::wstring text_;
    ErrorPlace place_;
    std::string what_;
};

// Throws Damaged: the file's content contradicts itself, as `detail` says.
[[noreturn]] SG_API void throwDamaged(std::wstring detail);
[[noreturn]] SG_API void throwDamaged(std::wstring detail, uint32_t page);

}  // namespace sg::jet
