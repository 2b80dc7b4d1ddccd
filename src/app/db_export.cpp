#include "app/db_export.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <vector>

#include "app/csv_values.h"
#include "app/csv_writer.h"
#include "app/db_files.h"
#include "app/progress_bar.h"
#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/values/text_codec.h"
#include "host/seam/file_error.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

[[noreturn]] void failWriting(const std::wstring& path, const std::wstring& why) {
    throw FileError(L"cannot write " + path + L": " + why);
}

// `error` is the system's number.
[[noreturn]] void failWriting(const std::wstring& path, int error) {
    failWriting(path, fromUtf8(std::strerror(error)));
}

bool isSameFile(const struct stat& status, const std::wstring& path) {
    struct stat other;
    return stat(toUtf8(path).c_str(), &other) == 0 && other.st_dev == status.st_dev &&
           other.st_ino == status.st_ino;
}

// A file that is made, or emptied when it is there; standard output when the path is empty.
class OutputFile {
  public:
    // Throws FileError, also when this is one of the files that are read, which is left as it is.
    OutputFile(const std::wstring& path, const std::vector<std::wstring>& read);
    ~OutputFile() {
        if (owned_ >= 0) ::close(owned_);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    int descriptor() const { return owned_ >= 0 ? owned_ : STDOUT_FILENO; }
    // Throws FileError when `writer`, which writes here, could not write everything.
    void finish(CsvWriter& writer);

  private:
    void empty(const std::vector<std::wstring>& read) const;

    const std::wstring path_;
    int owned_ = -1;
};

OutputFile::OutputFile(const std::wstring& path, const std::vector<std::wstring>& read)
    : path_(resolvePath(path).path) {
    if (path.empty()) return;
    owned_ = ::open(toUtf8(path_).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (owned_ < 0) failWriting(path_, errno);
    try {
        empty(read);
    } catch (...) {
        ::close(owned_);
        throw;
    }
}

void OutputFile::empty(const std::vector<std::wstring>& read) const {
    struct stat status;
    if (fstat(owned_, &status) != 0) failWriting(path_, errno);
    if (!S_ISREG(status.st_mode)) return;
    for (const std::wstring& file : read) {
        if (isSameFile(status, file)) failWriting(path_, L"it is the database itself");
    }
    if (ftruncate(owned_, 0) != 0) failWriting(path_, errno);
}

void OutputFile::finish(CsvWriter& writer) {
    writer.flush();
    int error = writer.error();
    if (owned_ >= 0) {
        if (::close(owned_) != 0 && error == 0) error = errno;
        owned_ = -1;
    }
    if (error == 0) return;
    if (path_.empty()) throw FileError(L"standard output cannot be written");
    failWriting(path_, error);
}

constexpr uint64_t kRowsBetween = 4096;  // two looks at how far the export is

// Writes tables one after another, and shows how far it is.
class Exporter {
  public:
    Exporter(jet::Database& database, bool printsToOutput)
        : database_(database),
          bar_(L"Exporting",
               printsToOutput ? ProgressBar::Beside::Output : ProgressBar::Beside::Nothing),
          damage_(&bar_) {
        damage_.add(database.catalogDamage());
    }

    // To standard output when the path is empty.
    void exportOne(const std::wstring& table, const std::wstring& path);
    // Each to a file of its own in the folder.
    void exportAll(const std::wstring& folder);

    int exitCode() const { return damage_.exitCode(); }

  private:
    void count(const jet::CatalogObject& object);
    void exportTable(const jet::CatalogObject& object, const std::wstring& path);
    void writeRows(const jet::Table& table, CsvWriter& csv);
    void writeValue(const jet::RowCursor& row, size_t column, CsvWriter& csv);
    bool nextRow(jet::RowCursor& cursor);

    jet::Database& database_;
    ProgressBar bar_;
    DamageReport damage_;
    uint64_t done_ = 0;   // rows
    uint64_t total_ = 0;  // rows, those of linked tables left out
    jet::Value value_;    // these two are used again for each value
    std::string text_;
};

// Goes to the next row that can be read.
bool Exporter::nextRow(jet::RowCursor& cursor) {
    if (++done_ % kRowsBetween == 0) bar_.show(done_, total_);
    for (;;) {
        try {
            return cursor.next();
        } catch (const jet::Error& error) {
            damage_.add(error);
        }
    }
}

// A value that cannot be read becomes an empty field.
void Exporter::writeRows(const jet::Table& table, CsvWriter& csv) {
    const std::vector<size_t> order = shownOrder(table.definition());
    for (const size_t column : order)
        csv.text(table.definition().columns[column].name);
    csv.endRow();

    jet::RowCursor cursor = table.scan();
    while (!csv.failed() && nextRow(cursor)) {
        for (const size_t column : order) {
            try {
                writeValue(cursor, column, csv);
            } catch (const jet::Error& error) {
                damage_.add(error);
                csv.null();
            }
        }
        csv.endRow();
    }
}

// Throws before it has written anything.
void Exporter::writeValue(const jet::RowCursor& row, size_t column, CsvWriter& csv) {
    if (row.isNull(column) || !row.table().definition().columns[column].isText()) {
        row.value(column, value_);
        std::visit(CsvValueWriter{csv}, value_);
        return;
    }
    const jet::Format& format = row.table().store().format();
    csv.text(jet::decodeTextUtf8(row.content(column), format, text_));
}

void Exporter::exportTable(const jet::CatalogObject& object, const std::wstring& path) {
    std::wstring name;
    jet::Database& home = homeOf(database_, object, name);
    // Others may write meanwhile: the rows are those of one moment.
    const jet::Database::ReadScope scope(home);
    const jet::Table table = home.table(name);
    OutputFile output(path, {database_.name(), home.name()});
    CsvWriter csv(output.descriptor());
    writeRows(table, csv);
    output.finish(csv);
}

void Exporter::count(const jet::CatalogObject& object) {
    if (!object.isTable()) return;
    try {
        total_ += database_.tableAt(object.definitionPage()).rowCount();
    } catch (const jet::Error&) {
        // Exporting the table will tell.
    }
}

void Exporter::exportOne(const std::wstring& table, const std::wstring& path) {
    const jet::CatalogObject object = findTable(database_, table);
    count(object);
    exportTable(object, path);
}

// A file name for the table, which leads to no other folder and differs from the names given before
// in more than case.
std::wstring fileNameFor(const std::wstring& table, std::set<std::wstring>& taken) {
    std::wstring name = onOneLine(table);
    std::replace(name.begin(), name.end(), L'/', L'_');
    std::replace(name.begin(), name.end(), L'\\', L'_');
    std::wstring unique = name;
    for (int i = 2; !taken.insert(lowerCased(unique)).second; ++i)
        unique = name + L" (" + std::to_wstring(i) + L")";
    return unique + L".csv";
}

void Exporter::exportAll(const std::wstring& folder) {
    const std::wstring resolved = resolvePath(folder).path;
    if (!isFolder(resolved)) {
        const FileResult made = makeFolder(resolved);
        if (!made) throw FileError(made.error);
    }
    const std::vector<jet::CatalogObject> tables = userTables(database_);
    for (const jet::CatalogObject& table : tables)
        count(table);
    std::set<std::wstring> taken;
    for (const jet::CatalogObject& table : tables) {
        const std::wstring path = resolved + L"/" + fileNameFor(table.name, taken);
        try {
            exportTable(table, path);
        } catch (const jet::Error& error) {
            damage_.add(error);
        }
    }
}

}  // namespace

int exportTables(const DatabaseArguments& arguments) {
    jet::Database database = openDatabase(arguments.file);
    Exporter exporter(database, !arguments.all && arguments.output.empty());
    if (arguments.all) {
        exporter.exportAll(arguments.folder);
    } else {
        exporter.exportOne(arguments.table, arguments.output);
    }
    return exporter.exitCode();
}

}  // namespace sg::app
