#include "host/dxf/class_records.h"

#include "host/model/core/proxies.h"
#include "platform/db/entity.h"

namespace sg::dxf {
namespace {

constexpr const wchar_t* kObjects = L"ObjectDBX Classes";
constexpr ProductClass kProductClasses[] = {
    {L"ACDBDICTIONARYWDFLT", L"AcDbDictionaryWithDefault", kObjects, 0},
    {L"DICTIONARYVAR", L"AcDbDictionaryVar", kObjects, 0},
    {L"ACDBPLACEHOLDER", L"AcDbPlaceHolder", kObjects, 0, true},
    {L"LAYOUT", L"AcDbLayout", kObjects, 0, true},
    {L"PLOTSETTINGS", L"AcDbPlotSettings", kObjects, 0, true},
    {L"SORTENTSTABLE", L"AcDbSortentsTable", kObjects, 0},
    {L"IMAGE", L"AcDbRasterImage", L"ISM", 2175},
    {L"IMAGEDEF", L"AcDbRasterImageDef", L"ISM", 0},
    {L"IMAGEDEF_REACTOR", L"AcDbRasterImageDefReactor", L"ISM", 1},
    {L"RASTERVARIABLES", L"AcDbRasterVariables", L"ISM", 0},
};

constexpr int kCount = 91;

}  // namespace

const ProductClass* productClass(std::wstring_view dxfName) {
    for (const ProductClass& known : kProductClasses) {
        if (known.dxfName == dxfName) return &known;
    }
    return nullptr;
}

std::map<std::wstring, ClassRecords::Use> ClassRecords::usedClasses() const {
    std::map<const AcRxClass*, Use> byType;
    std::map<std::wstring, Use> uses;
    state_.forEach([&](const AcDbObject& object) {
        if (object.isErased()) return;
        const AcRxClass* const type = object.isA();
        if (model::proxyData(object) != nullptr) {
            ++uses[model::dxfNameOf(object)].count;
        } else {
            ++byType[type].count;
        }
    });
    for (const auto& [type, found] : byType) {
        Use& use = uses[type->dxfName()];
        use.count += found.count;
        use.className = type->name();
        use.applicationName = type->appNameFor(release_.number);
        use.flags = type->proxyFlags();
        use.isEntity = type->isDerivedFrom(AcDbEntity::desc());
    }
    for (const ProductClass& known : kProductClasses) {
        const auto use = uses.find(known.dxfName);
        if (use == uses.end() || (known.isFixed && release_.number >= AcDb::kDHL_1018)) continue;
        use->second.className = known.className;
        use->second.applicationName = known.applicationName;
        use->second.flags = known.flags;
    }
    return uses;
}

void ClassRecords::write(GroupOutput& output) {
    std::map<std::wstring, Use> uses = usedClasses();
    for (const model::FileOrigin::ClassRecord& record : origin_.classes) {
        const auto use = uses.find(record.dxfName);
        writeKept(output, record, use == uses.end() ? 0 : use->second.count);
        if (use != uses.end()) uses.erase(use);
    }
    for (const auto& [dxfName, use] : uses) {
        if (!use.applicationName.empty() && !dxfName.empty()) writeNew(output, dxfName, use);
    }
}

// The number of a class's objects came with release 2004.
void ClassRecords::writeKept(GroupOutput& output, const model::FileOrigin::ClassRecord& record,
                             int32_t count) {
    const bool isOwn = origin_.release == release_.number;
    const bool isCounted = release_.number >= AcDb::kDHL_1018;
    bool hasCount = false;
    output.name(0, "CLASS");
    for (model::GroupData::Walk walk(record.groups); walk.next();) {
        const auto& group = walk.group();
        if (group.code == kCount) {
            hasCount = true;
            if (!isCounted) continue;
        }
        if (group.code == 280 && !hasCount && !isOwn && isCounted) {
            output.whole(kCount, count);
            hasCount = true;
        }
        output.group(group);
    }
}

void ClassRecords::writeNew(GroupOutput& output, const std::wstring& dxfName, const Use& use) {
    output.name(0, "CLASS");
    output.text(1, dxfName);
    output.text(2, use.className);
    output.text(3, use.applicationName);
    output.whole(90, use.flags);
    if (release_.number >= AcDb::kDHL_1018) output.whole(kCount, use.count);
    output.whole(280, 0);
    output.whole(281, use.isEntity ? 1 : 0);
}

}  // namespace sg::dxf
