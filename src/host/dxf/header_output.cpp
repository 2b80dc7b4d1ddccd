#include "host/dxf/header_output.h"

#include <set>

#include "base/encoding.h"
#include "host/model/core/group_writer.h"
#include "host/model/tables/references.h"

namespace sg::dxf {
namespace {

using model::FileOrigin;
using model::VariableRow;
using model::VariableValue;

class HeaderOutput {
  public:
    HeaderOutput(GroupOutput& output, const model::DatabaseState& state, const FileOrigin& origin,
                 const Release& release, std::string_view codePage)
        : output_(output), state_(state), origin_(origin), release_(release), codePage_(codePage) {}

    void write() {
        const bool isOwn = origin_.release == release_.number && !origin_.variables.empty();
        if (isOwn) {
            writeAsRead();
        } else {
            writeAnew();
        }
    }

  private:
    // False for a variable that is no fixed one of the file.
    bool writeFixed(std::string_view name) {
        if (name == "$ACADVER") {
            output_.name(9, name);
            output_.name(1, release_.version);
        } else if (name == "$DWGCODEPAGE") {
            output_.name(9, name);
            output_.name(3, codePage_);
        } else if (name == "$HANDSEED") {
            output_.name(9, name);
            output_.handle(5, state_.nextHandle());
        } else {
            return false;
        }
        return true;
    }

    void writeGroups(const FileOrigin::Variable& variable) {
        output_.name(9, variable.name);
        for (model::GroupData::Walk walk(variable.groups); walk.next();)
            output_.group(walk.group());
    }

    // The code that the file has for the variable, which is not the same in all releases.
    static int codeOf(const FileOrigin::Variable& variable) {
        model::GroupData::Walk walk(variable.groups);
        return walk.next() ? walk.group().code : model::headerRows()[variable.place].code;
    }

    void writeAsRead() {
        std::set<size_t> written;
        for (const FileOrigin::Variable& variable : origin_.variables) {
            if (writeFixed(variable.name)) continue;
            if (variable.isKnown) written.insert(variable.place);
            if (!variable.isKnown || state_.header().at(variable.place) == variable.value) {
                writeGroups(variable);
            } else {
                writeVariable(variable.place, codeOf(variable));
            }
        }
        // Those that the file did not have and that were set.
        const auto rows = model::headerRows();
        for (size_t place = 0; place < rows.size(); ++place) {
            const bool isNew = !written.contains(place) && rows[place].since <= release_.number &&
                               state_.header().at(place) != rows[place].initial;
            if (isNew) writeVariable(place, rows[place].code);
        }
    }

    void writeAnew() {
        writeFixed("$ACADVER");
        output_.name(9, "$ACADMAINTVER");
        output_.whole(release_.number >= AcDb::kDHL_1032 ? 90 : 70, 6);
        writeFixed("$DWGCODEPAGE");
        writeOthers();
        const auto rows = model::headerRows();
        for (size_t place = 0; place < rows.size(); ++place) {
            if (rows[place].since > release_.number) continue;
            writeVariable(place, rows[place].code);
            if (std::wstring_view(rows[place].name) == L"SPLINESEGS") writeFixed("$HANDSEED");
        }
    }

    // Of the file's variables that no drawing knows, a later release has them all, an earlier one
    // those that users set.
    void writeOthers() {
        for (const FileOrigin::Variable& variable : origin_.variables) {
            const bool isCustom = variable.name.starts_with("$CUSTOMPROPERTY");
            const bool isKept =
                isCustom ? release_.number >= AcDb::kDHL_1018 : origin_.release < release_.number;
            const bool isFixed = variable.name == "$ACADVER" || variable.name == "$DWGCODEPAGE" ||
                                 variable.name == "$HANDSEED" || variable.name == "$ACADMAINTVER";
            if (!variable.isKnown && isKept && !isFixed) writeGroups(variable);
        }
    }

    void writeVariable(size_t place, int code);
    void writeValue(const VariableRow& row, int code, const VariableValue& value);

    GroupOutput& output_;
    const model::DatabaseState& state_;
    const FileOrigin& origin_;
    const Release& release_;
    std::string_view codePage_;
};

// What names nothing is left out where its group is a handle, or an identifier.
void HeaderOutput::writeVariable(size_t place, int code) {
    const VariableRow& row = model::headerRows()[place];
    const VariableValue& value = state_.header().at(place);
    const auto* const id = std::get_if<AcDbObjectId>(&value);
    if (id != nullptr && id->isNull() && row.table == model::NamedIn::nothing) return;
    const auto* const text = std::get_if<std::wstring>(&value);
    if (text != nullptr && text->empty() && std::wstring_view(row.name).ends_with(L"GUID")) return;
    output_.name(9, "$" + toUtf8(row.name));
    writeValue(row, code, value);
}

void HeaderOutput::writeValue(const VariableRow& row, int code, const VariableValue& value) {
    if (const auto* whole = std::get_if<int32_t>(&value)) return output_.whole(code, *whole);
    if (const auto* real = std::get_if<double>(&value)) {
        return output_.real(code, model::isAngleGroup(code) ? model::toFileDegrees(*real) : *real);
    }
    if (const auto* text = std::get_if<std::wstring>(&value)) return output_.text(code, *text);
    if (const auto* color = std::get_if<AcCmColor>(&value)) {
        return output_.whole(code, color->colorIndex());
    }
    if (const auto* point = std::get_if<AcGePoint3d>(&value)) {
        output_.real(code, point->x);
        output_.real(code + 10, point->y);
        if (!row.flat) output_.real(code + 20, point->z);
        return;
    }
    const AcDbObjectId id = std::get<AcDbObjectId>(value);
    if (row.table == model::NamedIn::nothing) return output_.object(code, id);
    output_.text(code, model::nameOf(id));
}

}  // namespace

void writeHeader(GroupOutput& output, const model::DatabaseState& state, const FileOrigin& origin,
                 const Release& release, std::string_view codePage) {
    HeaderOutput(output, state, origin, release, codePage).write();
}

}  // namespace sg::dxf
