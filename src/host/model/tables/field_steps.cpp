#include "host/model/tables/field_steps.h"

#include "host/model/core/dwg_form.h"

namespace sg::model {
namespace {

constexpr int kHeight = 40;  // the field by which a width is told in a view

// Bits of a view's mode, and where a DWG object has them: the first three and, the other way
// round, the fifth; the fourth stands apart.
constexpr int kModeBits = 3;
constexpr int kFollows = 8;
constexpr int kFrontAtEye = 16;
constexpr int kIconBits = 2;

}  // namespace

// The way to a record's fields by their codes, whether it keeps them or not.
class FieldSteps {
  public:
    explicit FieldSteps(const RecordFields& fields) : fields_(fields) {}

    template <class Value>
    Value get(int code, Value otherwise) const {
        const std::optional<size_t> place = fields_.find(code);
        if (!place) return otherwise;
        const auto* const value = std::get_if<Value>(&fields_.values_[*place]);
        return value == nullptr ? otherwise : *value;
    }
    Reference kindOf(int code) const {
        const std::optional<size_t> place = fields_.find(code);
        return place ? fields_.rows_[*place].pointer : Reference::softPointer;
    }
    // What a colour is kept as.
    bool isColor(int code) const {
        const std::optional<size_t> place = fields_.find(code);
        return place && std::holds_alternative<AcCmColor>(fields_.values_[*place]);
    }

    bool isFiled(const AcDbDwgFiler& filer, const DwgStep& step) const {
        if (filer.dwgVersion() < step.since || filer.dwgVersion() >= step.until) return false;
        return step.onlyWith == 0 || get(step.onlyWith, int32_t(0)) != 0;
    }

    static void put(RecordFields& fields, int code, VariableValue value) {
        const std::optional<size_t> place = fields.find(code);
        if (!place || fields.values_[*place].index() != value.index()) return;
        fields.values_[*place] = std::move(value);
    }

  private:
    const RecordFields& fields_;
};

namespace {

// ---- Writing ------------------------------------------------------------------------------------

class StepWriter {
  public:
    StepWriter(AcDbDwgFiler& filer, const RecordFields& fields) : filer_(filer), fields_(fields) {}

    void write(const DwgStep& step) const {
        switch (step.coding) {
            case DwgCoding::bit:
                filer_.writeBool(whole(step) != 0);
                break;
            case DwgCoding::byte:
                filer_.writeUInt8(static_cast<uint8_t>(whole(step)));
                break;
            case DwgCoding::int16:
                filer_.writeInt16(static_cast<int16_t>(whole(step)));
                break;
            case DwgCoding::int32:
                filer_.writeInt32(whole(step));
                break;
            case DwgCoding::real:
                filer_.writeDouble(fields_.get(step.code, step.otherwise));
                break;
            case DwgCoding::flatPoint:
                filer_.writePoint2d({point(step).x, point(step).y});
                break;
            case DwgCoding::point:
                filer_.writePoint3d(point(step));
                break;
            case DwgCoding::text:
                filer_.writeString(fields_.get(step.code, std::wstring()));
                break;
            case DwgCoding::color:
                writeColor(&filer_, color(step));
                break;
            default:
                writeMore(step);
                break;
        }
    }

  private:
    int32_t whole(const DwgStep& step) const {
        return fields_.get(step.code, static_cast<int32_t>(step.otherwise));
    }
    AcGePoint3d point(const DwgStep& step) const {
        return fields_.get(step.code, AcGePoint3d(step.otherwise, step.otherwise, 0));
    }
    AcCmColor color(const DwgStep& step) const {
        AcCmColor found;
        if (fields_.isColor(step.code)) return fields_.get(step.code, found);
        found.setColorIndex(static_cast<uint16_t>(whole(step)));
        return found;
    }
    void writeMore(const DwgStep& step) const {
        switch (step.coding) {
            case DwgCoding::softId:
                filer_.writeSoftPointerId(AcDbObjectId());
                break;
            case DwgCoding::hardId:
                filer_.writeHardPointerId(AcDbObjectId());
                break;
            case DwgCoding::ownedId:
                filer_.writeHardOwnershipId(AcDbObjectId());
                break;
            case DwgCoding::id:
                writeReference(filer_, fields_.kindOf(step.code),
                               fields_.get(step.code, AcDbObjectId()));
                break;
            case DwgCoding::timesHeight:
                filer_.writeDouble(fields_.get(step.code, 1.0) * fields_.get(kHeight, 1.0));
                break;
            case DwgCoding::viewMode:
                writeBits(whole(step), kModeBits);
                filer_.writeBool((whole(step) & kFrontAtEye) == 0);
                break;
            case DwgCoding::follow:
                filer_.writeBool((whole(step) & kFollows) != 0);
                break;
            case DwgCoding::icon:
                writeBits(whole(step), kIconBits);
                break;
            default:
                break;
        }
    }
    // The lowest first.
    void writeBits(int32_t bits, int count) const {
        for (int i = 0; i < count; ++i)
            filer_.writeBool((bits >> i & 1) != 0);
    }

    AcDbDwgFiler& filer_;
    FieldSteps fields_;
};

// ---- Reading ------------------------------------------------------------------------------------

class StepReader {
  public:
    StepReader(AcDbDwgFiler& filer, RecordFields& fields) : filer_(filer), fields_(fields) {}

    void read(const DwgStep& step) {
        switch (step.coding) {
            case DwgCoding::bit:
                put(step, int32_t(bit()));
                break;
            case DwgCoding::byte:
                put(step, int32_t(take<uint8_t>(&AcDbDwgFiler::readUInt8)));
                break;
            case DwgCoding::int16:
                put(step, int32_t(take<int16_t>(&AcDbDwgFiler::readInt16)));
                break;
            case DwgCoding::int32:
                put(step, take<int32_t>(&AcDbDwgFiler::readInt32));
                break;
            case DwgCoding::real:
                put(step, take<double>(&AcDbDwgFiler::readDouble));
                break;
            case DwgCoding::flatPoint: {
                const auto flat = take<AcGePoint2d>(&AcDbDwgFiler::readPoint2d);
                put(step, AcGePoint3d(flat.x, flat.y, 0));
                break;
            }
            case DwgCoding::point:
                put(step, take<AcGePoint3d>(&AcDbDwgFiler::readPoint3d));
                break;
            case DwgCoding::text: {
                std::wstring text;
                filer_.readString(text);
                put(step, std::move(text));
                break;
            }
            case DwgCoding::color:
                readColor(step);
                break;
            default:
                readMore(step);
                break;
        }
    }

  private:
    template <class Value>
    Value take(Acad::ErrorStatus (AcDbDwgFiler::*operation)(Value*)) {
        Value value{};
        (filer_.*operation)(&value);
        return value;
    }
    bool bit() { return take<bool>(&AcDbDwgFiler::readBool); }
    int32_t bits(int count) {
        int32_t found = 0;
        for (int i = 0; i < count; ++i)
            found |= int32_t(bit()) << i;
        return found;
    }
    void put(const DwgStep& step, VariableValue value) {
        if (filer_.filerStatus() == Acad::eOk) {
            FieldSteps::put(fields_, step.code, std::move(value));
        }
    }
    void readColor(const DwgStep& step) {
        AcCmColor color;
        sg::model::readColor(&filer_, color);
        put(step, color);
        put(step, int32_t(color.colorIndex()));
    }
    void readMore(const DwgStep& step) {
        switch (step.coding) {
            case DwgCoding::softId:
            case DwgCoding::hardId:
            case DwgCoding::ownedId:
                readReference(filer_, Reference::softPointer);
                break;
            case DwgCoding::id:
                put(step, readReference(filer_, FieldSteps(fields_).kindOf(step.code)));
                break;
            case DwgCoding::timesHeight: {
                const auto width = take<double>(&AcDbDwgFiler::readDouble);
                const double height = FieldSteps(fields_).get(kHeight, 1.0);
                put(step, height == 0 ? 1.0 : width / height);
                break;
            }
            case DwgCoding::viewMode: {
                const int32_t mode = bits(kModeBits);
                put(step, bit() ? mode : mode | kFrontAtEye);
                break;
            }
            case DwgCoding::follow: {
                const int32_t mode = FieldSteps(fields_).get(step.code, int32_t(0)) & ~kFollows;
                put(step, bit() ? mode | kFollows : mode);
                break;
            }
            case DwgCoding::icon:
                put(step, bits(kIconBits));
                break;
            default:
                break;
        }
    }

    AcDbDwgFiler& filer_;
    RecordFields& fields_;
};

}  // namespace

Acad::ErrorStatus writeSteps(AcDbDwgFiler& filer, const RecordFields& fields,
                             std::span<const DwgStep> steps) {
    const StepWriter writer(filer, fields);
    const FieldSteps all(fields);
    for (const DwgStep& step : steps) {
        if (all.isFiled(filer, step)) writer.write(step);
    }
    return filer.filerStatus();
}

Acad::ErrorStatus readSteps(AcDbDwgFiler& filer, RecordFields& fields,
                            std::span<const DwgStep> steps) {
    StepReader reader(filer, fields);
    const FieldSteps all(fields);
    for (const DwgStep& step : steps) {
        if (all.isFiled(filer, step)) reader.read(step);
    }
    return filer.filerStatus();
}

}  // namespace sg::model
