#include "host/dxf/header_section.h"

#include "base/encoding.h"
#include "host/dxf/object_filer.h"
#include "host/dxf/releases.h"
#include "host/model/core/group_writer.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"

namespace sg::dxf {
namespace {

using model::VariableRow;
using model::VariableValue;

constexpr int kVariable = 9;
constexpr std::string_view kSeed = "$HANDSEED";

// Calls `visit` with each variable's name and groups.
template <class Visit>
void forEachVariable(Reading& reading, size_t position, const Visit& visit) {
    reading.reader.seek(position);
    Group group;
    std::string_view name;
    std::vector<Group> groups;
    while (reading.reader.next(group) == GroupReader::Step::group) {
        const bool isEnd = group.code == 0;
        if (!isEnd && group.code != kVariable) {
            if (group.isMalformed) {
                reading.report.warn(reading.reader.positionOf(group),
                                    L"the value of " + fromUtf8(name) + L" is not of its kind: \"" +
                                        reading.text(group) + L"\"; it is left out");
            } else {
                groups.push_back(group);
            }
            continue;
        }
        if (!name.empty()) visit(name, groups);
        if (isEnd) return;
        name = group.text;
        groups.clear();
    }
}

int32_t wholeOf(const Group& group) {
    if (isWhole(group.kind)) return static_cast<int32_t>(group.whole);
    return group.kind == ValueKind::real ? static_cast<int32_t>(group.real) : 0;
}

AcDbObjectId objectOf(Reading& reading, const VariableRow& row, const Group& group) {
    if (group.kind == ValueKind::object || group.kind == ValueKind::handle) {
        return reading.handles.refer(group);
    }
    return model::recordNamed(&reading.database, row.table, reading.text(group));
}

VariableValue valueOf(Reading& reading, const VariableRow& row, const std::vector<Group>& groups) {
    const Group& first = groups.front();
    if (std::holds_alternative<int32_t>(row.initial)) return wholeOf(first);
    if (std::holds_alternative<double>(row.initial)) {
        const double value = first.kind == ValueKind::real ? first.real : wholeOf(first);
        return model::isAngleGroup(row.code) ? model::fromFileDegrees(value) : value;
    }
    if (std::holds_alternative<AcGePoint3d>(row.initial)) {
        AcGePoint3d point;
        double* const axes[] = {&point.x, &point.y, &point.z};
        for (size_t i = 0; i < groups.size() && i < 3; ++i) {
            if (groups[i].kind == ValueKind::real) *axes[i] = groups[i].real;
        }
        return point;
    }
    if (std::holds_alternative<AcDbObjectId>(row.initial)) return objectOf(reading, row, first);
    if (std::holds_alternative<AcCmColor>(row.initial)) {
        AcCmColor color;
        color.setColorIndex(static_cast<uint16_t>(wholeOf(first)));
        for (const Group& group : groups) {
            if (group.code == 420) model::setTrueColor(color, static_cast<int32_t>(group.whole));
        }
        return color;
    }
    return reading.text(first);
}

// A file of a release that nobody knew when this was written is read as the newest.
void takeVersion(Reading& reading, size_t position, std::string_view version) {
    const Release* release = releaseOfVersion(version);
    if (release == nullptr) {
        const bool isOld = version < "AC1009";
        release = &releaseOf(isOld ? AcDb::kDHL_1009 : AcDb::kDHL_CURRENT);
        reading.report.warn(position, L"\"" + fromUtf8(version) +
                                          L"\" is no known release; it is " + L"read as release " +
                                          fromUtf8(release->name));
    }
    reading.release = release->number;
    reading.origin->release = static_cast<int16_t>(release->number);
    reading.origin->version = version;
}

}  // namespace

void readVersion(Reading& reading, size_t position) {
    std::string codePage = "ANSI_1252";
    forEachVariable(reading, position,
                    [&](std::string_view name, const std::vector<Group>& groups) {
                        if (groups.empty()) return;
                        if (name == "$ACADVER") takeVersion(reading, position, groups.front().text);
                        if (name == "$DWGCODEPAGE") codePage = groups.front().text;
                        if (name == kSeed && groups.front().kind == ValueKind::handle) {
                            reading.seed = groups.front().handle;
                        }
                    });
    if (!TextCodec::isKnown(codePage)) {
        reading.report.warn(position, L"\"" + fromUtf8(codePage) +
                                          L"\" is no known code page; texts are read in ANSI_1252");
    }
    reading.codec = TextCodec(codePage, reading.release >= AcDb::kDHL_1021);
    reading.origin->codePage = reading.codec.codePage();
}

void readHeader(Reading& reading, size_t position) {
    model::HeaderVariables& header = reading.state.changeHeader();
    forEachVariable(
        reading, position, [&](std::string_view name, const std::vector<Group>& groups) {
            model::FileOrigin::Variable variable;
            variable.name = name;
            for (const Group& group : groups) {
                appendGroup(variable.groups, group, reading.codec, reading.handles);
            }
            const auto place = name.empty()
                                   ? std::nullopt
                                   : model::HeaderVariables::find(fromUtf8(name.substr(1)));
            if (place && !groups.empty()) {
                variable.value = valueOf(reading, model::headerRows()[*place], groups);
                variable.place = *place;
                variable.isKnown = true;
                header.set(*place, variable.value);
            }
            reading.origin->variables.push_back(std::move(variable));
        });
}

}  // namespace sg::dxf
