#include "app/db_export.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <set>
#include <vector>

#include "app/csv_writer.h"
#include "app/db_files.h"
#include "app/exit_codes.h"
#include "base/encoding.h"
#include "base/text.h"
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

struct FieldWriter {
    CsvWriter& csv;

    void operator()(std::monostate) const { csv.null(); }
    void operator()(bool value) const { csv.number(int64_t(value)); }
    void operator()(uint8_t value) const { csv.number(int64_t(value)); }
    void operator()(int16_t value) const { csv.number(int64_t(value)); }
    void operator()(int32_t value) const { csv.number(int64_t(value)); }
    void operator()(int64_t value) const { csv.number(value); }
    void operator()(float value) const { csv.number(value); }
    void operator()(double value) const { csv.number(value); }
    void operator()(jet::Currency value) const { csv.scaled(value.scaled, 4); }
    void operator()(jet::Date value) const {
        const jet::DateParts p = jet::partsOf(value);
        csv.date(p.year, p.month, p.day, p.hour, p.minute, p.second);
    }
    void operator()(const std::wstring& value) const { csv.text(value); }
    void operator()(const jet::Bytes& value) const { csv.hexadecimal(value); }
    void operator()(const jet::Guid& value) const { csv.text(jet::toText(value)); }
    void operator()(const jet::Decimal& value) const { csv.text(jet::toText(value)); }
};

// Places of the columns in the order in which programs show them.
std::vector<size_t> shownOrder(const jet::TableDefinition& table) {
    std::vector<size_t> order(table.columns.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return table.columns[a].ordinal < table.columns[b].ordinal;
    });
    return order;
}

// Goes to the next row that can be read.
bool nextRow(jet::RowCursor& cursor, DamageReport& damage) {
    for (;;) {
        try {
            return cursor.next();
        } catch (const jet::Error& error) {
            damage.add(error);
        }
    }
}

// A value that cannot be read becomes an empty field.
void writeRows(const jet::Table& table, CsvWriter& csv, DamageReport& damage) {
    const std::vector<size_t> order = shownOrder(table.definition());
    for (const size_t column : order)
        csv.text(table.definition().columns[column].name);
    csv.endRow();

    // One value a column, so that each keeps the memory of its type.
    std::vector<jet::Value> values(order.size());
    jet::RowCursor cursor = table.scan();
    while (!csv.failed() && nextRow(cursor, damage)) {
        for (size_t i = 0; i < order.size(); ++i) {
            try {
                cursor.value(order[i], values[i]);
            } catch (const jet::Error& error) {
                damage.add(error);
                values[i] = std::monostate();
            }
            std::visit(FieldWriter{csv}, values[i]);
        }
        csv.endRow();
    }
}

void exportTable(const jet::Database& database, const jet::CatalogObject& object,
                 const std::wstring& path, DamageReport& damage) {
    const OpenTable open = openTable(database, object);
    OutputFile output(path, {database.store().name(), open.table.store().name()});
    CsvWriter csv(output.descriptor());
    writeRows(open.table, csv, damage);
    output.finish(csv);
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

void exportAll(const jet::Database& database, const std::wstring& folder, DamageReport& damage) {
    const std::wstring resolved = resolvePath(folder).path;
    if (!isFolder(resolved)) {
        const FileResult made = makeFolder(resolved);
        if (!made) throw FileError(made.error);
    }
    std::set<std::wstring> taken;
    for (const jet::CatalogObject* table : userTables(database)) {
        const std::wstring path = resolved + L"/" + fileNameFor(table->name, taken);
        try {
            exportTable(database, *table, path, damage);
        } catch (const jet::Error& error) {
            damage.add(error);
        }
    }
}

}  // namespace

int exportTables(const DatabaseArguments& arguments) {
    const jet::Database database = openDatabase(arguments.file);
    DamageReport damage;
    damage.add(database.catalogDamage());
    if (arguments.all) {
        exportAll(database, arguments.folder, damage);
    } else {
        exportTable(database, findTable(database, arguments.table), arguments.output, damage);
    }
    return damage.exitCode();
}

}  // namespace sg::app
