#include <algorithm>
#include <cwchar>

#include "base/encoding.h"
#include "host/model/core/group_writer.h"
#include "host/model/core/object_access.h"
#include "host/model/kept/kept_form.h"
#include "host/model/tables/references.h"
#include "host/model/tables/styles.h"
#include "platform/db/database.h"

// Kept objects as DWG objects.

namespace sg::model {
namespace {

constexpr size_t kMostRows = 1 << 20;

bool isFiled(const AcDbDwgFiler& filer, const DwgKeptStep& step) {
    return filer.dwgVersion() >= step.since && filer.dwgVersion() < step.until;
}

// ---- Colours ------------------------------------------------------------------------------------

// Before 2004 a colour is its index; later it has its method and value, and perhaps names, behind
// an index of 0.
enum ColorName : uint8_t { kHasName = 1, kHasBook = 2 };

KeptColor readColor(AcDbDwgFiler& filer, bool isIndex) {
    int16_t index = 0;
    filer.readInt16(&index);
    if (isIndex) return KeptColor::ofIndex(index);
    KeptColor color;
    uint8_t names = 0;
    std::wstring unused;
    filer.readUInt32(&color.raw);
    filer.readUInt8(&names);
    for (const ColorName name : {kHasName, kHasBook}) {
        if ((names & name) != 0) filer.readString(unused);
    }
    return color;
}

void writeColor(AcDbDwgFiler& filer, KeptColor color, bool isIndex) {
    if (isIndex) {
        filer.writeInt16(static_cast<int16_t>(color.index()));
        return;
    }
    filer.writeInt16(0);
    filer.writeUInt32(color.raw);
    filer.writeUInt8(0);
}

// ---- Reading ------------------------------------------------------------------------------------

class Reader {
  public:
    explicit Reader(AcDbDwgFiler& filer) : filer_(filer) {}

    void read(const std::vector<DwgKeptStep>& steps, KeptValues& values) {
        above_.push_back(&values);
        for (const DwgKeptStep& step : steps) {
            if (filer_.filerStatus() != Acad::eOk) break;
            if (!isFiled(filer_, step)) continue;
            if (step.onlyIf != 0 && numberOf(step.onlyIf) != step.equals) continue;
            if (step.coding == KeptCoding::none) {
                filer_.setFilerStatus(Acad::eNotApplicable);
            } else if (step.coding == KeptCoding::rows) {
                readRows(step, values);
            } else {
                values.values[step.key] = value(step);
            }
        }
        above_.pop_back();
    }

  private:
    int64_t numberOf(int key) const {
        for (auto each = above_.rbegin(); each != above_.rend(); ++each) {
            const auto found = (*each)->values.find(key);
            if (found == (*each)->values.end()) continue;
            const auto* const whole = std::get_if<int64_t>(&found->second);
            return whole == nullptr ? 0 : *whole;
        }
        return 0;
    }
    void readRows(const DwgKeptStep& step, KeptValues& values) {
        std::vector<KeptValues>& rows = values.rows[step.key];
        int64_t left = step.times != 0 ? step.times : numberOf(step.key);
        for (; left > 0; --left) {
            if (filer_.filerStatus() != Acad::eOk || rows.size() == kMostRows) return;
            read(step.row, rows.emplace_back());
        }
    }
    template <class Value>
    Value take(Acad::ErrorStatus (AcDbDwgFiler::*operation)(Value*)) {
        Value taken{};
        (filer_.*operation)(&taken);
        return taken;
    }
    KeptValue value(const DwgKeptStep& step) {
        switch (step.coding) {
            case KeptCoding::bit:
                return int64_t(take<bool>(&AcDbDwgFiler::readBool));
            case KeptCoding::byte:
                return int64_t(take<uint8_t>(&AcDbDwgFiler::readUInt8));
            case KeptCoding::int16:
                return int64_t(take<int16_t>(&AcDbDwgFiler::readInt16));
            case KeptCoding::int32:
                return int64_t(take<int32_t>(&AcDbDwgFiler::readInt32));
            case KeptCoding::real:
                return turned(step.key, take<double>(&AcDbDwgFiler::readDouble), toFileDegrees);
            case KeptCoding::flatPoint: {
                const auto flat = take<AcGePoint2d>(&AcDbDwgFiler::readPoint2d);
                return AcGePoint3d(flat.x, flat.y, 0);
            }
            case KeptCoding::point:
                return take<AcGePoint3d>(&AcDbDwgFiler::readPoint3d);
            case KeptCoding::text: {
                std::wstring text;
                filer_.readString(text);
                return toUtf8(text);
            }
            case KeptCoding::color:
                return readColor(filer_, isBefore(&filer_, AcDb::kDHL_1018));
            case KeptCoding::fullColor:
                return readColor(filer_, false);
            default:
                return readReference(filer_, step.kind);
        }
    }
    // Groups have angles in degrees.
    template <class Turn>
    static double turned(int key, double value, const Turn& turn) {
        return isAngleGroup(key) ? turn(value) : value;
    }

    AcDbDwgFiler& filer_;
    std::vector<const KeptValues*> above_;
};

// ---- Writing ------------------------------------------------------------------------------------

class Writer {
  public:
    explicit Writer(AcDbDwgFiler& filer) : filer_(filer) {}

    void write(const std::vector<DwgKeptStep>& steps, const KeptValues& values) {
        for (const DwgKeptStep& step : steps) {
            if (!isFiled(filer_, step)) continue;
            if (step.onlyIf != 0 && whole(step.onlyIf, values) != step.equals) continue;
            if (step.coding != KeptCoding::rows) {
                write(step, values);
                continue;
            }
            const auto rows = values.rows.find(step.key);
            if (rows == values.rows.end()) continue;
            for (const KeptValues& row : rows->second)
                write(step.row, row);
        }
    }

  private:
    template <class Value>
    static Value get(int key, const KeptValues& values) {
        const auto found = values.values.find(key);
        if (found == values.values.end()) return {};
        const auto* const value = std::get_if<Value>(&found->second);
        return value == nullptr ? Value{} : *value;
    }
    static int64_t whole(int key, const KeptValues& values) { return get<int64_t>(key, values); }
    static int64_t whole(const DwgKeptStep& step, const KeptValues& values) {
        return values.values.contains(step.key) ? whole(step.key, values) : step.otherwise;
    }
    static double real(int key, const KeptValues& values) {
        const double value = get<double>(key, values);
        return isAngleGroup(key) ? fromFileDegrees(value) : value;
    }
    void write(const DwgKeptStep& step, const KeptValues& values) {
        switch (step.coding) {
            case KeptCoding::bit:
                filer_.writeBool(whole(step, values) != 0);
                break;
            case KeptCoding::byte:
                filer_.writeUInt8(static_cast<uint8_t>(whole(step, values)));
                break;
            case KeptCoding::int16:
                filer_.writeInt16(static_cast<int16_t>(whole(step, values)));
                break;
            case KeptCoding::int32:
                filer_.writeInt32(static_cast<int32_t>(whole(step, values)));
                break;
            case KeptCoding::real:
                filer_.writeDouble(real(step.key, values));
                break;
            case KeptCoding::flatPoint: {
                const auto point = get<AcGePoint3d>(step.key, values);
                filer_.writePoint2d({point.x, point.y});
                break;
            }
            case KeptCoding::point:
                filer_.writePoint3d(get<AcGePoint3d>(step.key, values));
                break;
            case KeptCoding::none:
                break;
            case KeptCoding::text:
                filer_.writeString(fromUtf8(get<std::string>(step.key, values)));
                break;
            case KeptCoding::color:
                writeColor(filer_, get<KeptColor>(step.key, values),
                           isBefore(&filer_, AcDb::kDHL_1018));
                break;
            case KeptCoding::fullColor:
                writeColor(filer_, get<KeptColor>(step.key, values), false);
                break;
            default:
                writeReference(filer_, step.kind, get<AcDbObjectId>(step.key, values));
                break;
        }
    }

    AcDbDwgFiler& filer_;
};

// ---- Names --------------------------------------------------------------------------------------

std::wstring nameOfStyle(AcDbObjectId id) {
    const auto* const style = peek<AcDbMlineStyle>(id);
    return style == nullptr ? nameOf(id) : style->name();
}

// Calls `visit` with each step, and the values that it is of, of the rows too.
template <class Visit>
void visitSteps(const std::vector<GroupKeptStep>& steps, KeptValues& values, const Visit& visit) {
    for (const GroupKeptStep& step : steps) {
        if (step.kind == GroupKeptStep::Kind::rows) {
            for (KeptValues& row : values.rows[step.key])
                visitSteps(step.row, row, visit);
        } else {
            visit(step, values);
        }
    }
}

template <class Value>
const Value* find(const KeptValues& values, int key) {
    const auto found = values.values.find(key);
    return found == values.values.end() ? nullptr : std::get_if<Value>(&found->second);
}

// Objects that groups have by their names.
void resolveNames(const std::vector<GroupKeptStep>& steps, AcDbDatabase* database,
                  KeptValues& values) {
    visitSteps(steps, values, [&](const GroupKeptStep& step, KeptValues& of) {
        if (step.kind != GroupKeptStep::Kind::name) return;
        const auto* const name = find<std::string>(of, step.key);
        if (name != nullptr) {
            of.values[step.key] = recordNamed(database, step.table, fromUtf8(*name));
        }
    });
}

// The other way round, and the names that stand beside objects.
void tellNames(const std::vector<GroupKeptStep>& steps, KeptValues& values) {
    visitSteps(steps, values, [&](const GroupKeptStep& step, KeptValues& of) {
        const bool isBeside = step.kind == GroupKeptStep::Kind::styleName;
        if (step.kind != GroupKeptStep::Kind::name && !isBeside) return;
        const auto* const id = find<AcDbObjectId>(of, isBeside ? step.second : step.key);
        if (id == nullptr) return;
        of.values[isBeside ? GroupKeptStep::kNameKey : step.key] = toUtf8(nameOfStyle(*id));
    });
}

// ---- Descriptions -------------------------------------------------------------------------------

std::string lastMarker(const GroupData& groups) {
    std::string found;
    for (GroupData::Walk walk(groups); walk.next();) {
        if (walk.group().code == 100) found = walk.group().text;
    }
    return found;
}

bool fits(const KeptForm& form, const ProxyData& data, AcDb::AcDbDwgVersion release) {
    if (data.dxfName != form.dxfName || release < form.since || release >= form.until) {
        return false;
    }
    if (form.marker == nullptr) return true;
    if (!data.groups.empty()) return lastMarker(data.groups) == form.marker;
    return toUtf8(data.className) == form.marker;
}

const GroupLayout& layoutFor(const KeptForm& form, AcDb::AcDbDwgVersion release) {
    size_t at = form.layouts.size() - 1;
    while (at > 0 && form.layouts[at].since > release)
        --at;
    return form.layouts[at];
}

// The layout that the groups have, with their values; null where they have none.
const GroupLayout* layoutOf(const KeptForm& form, const GroupData& groups, KeptValues& values) {
    for (const GroupLayout& layout : form.layouts) {
        values = KeptValues();
        if (valuesOf(groups, layout.steps, values)) return &layout;
    }
    return nullptr;
}

}  // namespace

const KeptForm* findKeptForm(const ProxyData& data, AcDb::AcDbDwgVersion release) {
    for (const auto* const forms : {&keptEntityForms(), &keptObjectForms()}) {
        for (const KeptForm& form : *forms) {
            if (fits(form, data, release)) return &form;
        }
    }
    return nullptr;
}

bool readKept(AcDbDwgFiler& filer, ProxyData& data) {
    if (isKeptBody(data)) return readKeptBody(filer, data);
    const KeptForm* const form = findKeptForm(data, filer.dwgVersion());
    if (form == nullptr) return false;
    KeptValues values;
    Reader(filer).read(form->dwg, values);
    if (filer.filerStatus() != Acad::eOk || !filer.dwgForm()->isRead()) return false;
    const GroupLayout& layout = layoutFor(*form, filer.dwgVersion());
    tellNames(layout.steps, values);
    groupsOf(values, layout.steps, data.groups);
    return true;
}

bool writeKept(AcDbDwgFiler& filer, const ProxyData& data) {
    if (isKeptBody(data)) return writeKeptBody(filer, data);
    const KeptForm* const form = findKeptForm(data, filer.dwgVersion());
    KeptValues values;
    const GroupLayout* const layout =
        form == nullptr ? nullptr : layoutOf(*form, data.groups, values);
    if (layout == nullptr) return false;
    resolveNames(layout->steps, filer.database(), values);
    Writer(filer).write(form->dwg, values);
    return true;
}

bool canWriteKept(const ProxyData& data, AcDb::AcDbDwgVersion release) {
    if (data.groups.empty()) return false;
    if (isKeptBody(data)) return true;
    const KeptForm* const form = findKeptForm(data, release);
    KeptValues values;
    return form != nullptr && layoutOf(*form, data.groups, values) != nullptr;
}

}  // namespace sg::model
