#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/model/core/dwg_form.h"
#include "host/model/core/group_data.h"
#include "host/model/core/proxies.h"
#include "host/model/tables/header_variables.h"

// Objects that no class reads are kept as the groups of drawing files. For those of them that are a
// part of every drawing format a description says where their values stand in a DWG object and
// where among the groups, so that one form makes the other.
namespace sg::model {

// ---- Values -------------------------------------------------------------------------------------

// A colour with its method in the highest byte (AcCmColor::Method, or kNoColor) and its value in
// the others, so that what is none stays that.
struct KeptColor {
    static constexpr uint32_t kNoColor = 0xC8;

    uint32_t raw = uint32_t(AcCmColor::kByLayer) << 24;

    static KeptColor ofIndex(int64_t index);  // 0 by block, 256 by layer, 257 none
    static KeptColor ofTrue(uint32_t rgb);
    uint32_t method() const { return raw >> 24; }
    bool isTrue() const { return method() == AcCmColor::kByColor; }
    int64_t index() const;  // of a true colour that of the nearest
    friend bool operator==(const KeptColor&, const KeptColor&) = default;
};

// Whole numbers, reals, points (2D with z 0), texts in UTF-8, objects, colours.
using KeptValue = std::variant<int64_t, double, AcGePoint3d, std::string, AcDbObjectId, KeptColor>;

// The values of an object, or of one row of a list in it, by keys; mostly the codes of their
// groups.
struct KeptValues {
    std::map<int, KeptValue> values;
    std::map<int, std::vector<KeptValues>> rows;  // by the key of their number
};

// ---- Descriptions -------------------------------------------------------------------------------

enum class KeptCoding : uint8_t {
    bit,        // B
    byte,       // RC
    int16,      // BS
    int32,      // BL
    real,       // BD
    flatPoint,  // 2RD
    point,      // 3BD
    text,       // T
    color,      // CMC
    fullColor,  // CMC as from release 2004 on, in every release
    id,         // H
    rows,       // the steps of a row, as often as the number under the key says
    none,       // what no description tells: the object is left as it is
};

// One step of a DWG object, in the releases from `since` to before `until`.
struct DwgKeptStep {
    int key;
    KeptCoding coding;
    int16_t since = 0;
    int16_t until = 0x7FFF;
    Reference kind = Reference::hardPointer;
    int onlyIf = 0;  // a key whose number must be `equals`
    int64_t equals = 1;
    int times = 0;          // of rows that are always as many
    int64_t otherwise = 0;  // a whole number that the groups have not
    std::vector<DwgKeptStep> row = {};
};

// One step among the groups.
struct GroupKeptStep {
    enum class Kind : uint8_t {
        marker,     // 100 with a text
        value,      // the value under the key
        name,       // the object under the key by its name
        styleName,  // what names the object under the key once more, for readers
        color,      // a colour as its index (code), and a true one besides (second code)
        rawColor,   // a colour as its method and value in 32 bits
        constant,   // a number that says nothing
        rows,
    };
    static constexpr int kNameKey = -1;

    Kind kind;
    int code = 0;
    int key = 0;
    std::optional<KeptValue> otherwise = {};  // left out when it is this, and this when left out
    std::string text = {};                    // of a marker
    NamedIn table = NamedIn::nothing;
    int second = 0;       // the code of a true colour; the key of what a name stands beside
    bool isReal = false;  // a whole number as a real one
    int times = 0;
    bool isMatrix = false;  // rows that are left out where they are the unit matrix
    std::vector<GroupKeptStep> row = {};
};

// The groups as files from a release on have them.
struct GroupLayout {
    int16_t since = 0;
    std::vector<GroupKeptStep> steps;
};

struct KeptForm {
    const wchar_t* dxfName;
    const char* marker;  // the last one, which tells those of one name apart; null: any
    std::vector<DwgKeptStep> dwg;
    std::vector<GroupLayout> layouts;  // by rising releases
    int16_t since = 0;
    int16_t until = 0x7FFF;  // the release that has another form
};

// ---- Use ----------------------------------------------------------------------------------------

// The description of an object for files of a release; null where there is none.
const KeptForm* findKeptForm(const ProxyData& data, AcDb::AcDbDwgVersion release);

// Reads what the filer has of the object into the proxy's groups. False, and nothing is changed,
// when the object has no description or is not as it says.
bool readKept(AcDbDwgFiler& filer, ProxyData& data);
// Writes the proxy's groups as a DWG object. False, and nothing is written, when they have no
// description or are not as it says.
bool writeKept(AcDbDwgFiler& filer, const ProxyData& data);
// True when the bits that the proxy keeps are what a file of the release has too: it is their own,
// or a later one in which nothing of the class is otherwise.
bool keepsBitsFor(const ProxyData& data, AcDb::AcDbDwgVersion release);
// True when writeKept() would.
bool canWriteKept(const ProxyData& data, AcDb::AcDbDwgVersion release);

// Groups into values and back. False when the groups are not as the steps say.
bool valuesOf(const GroupData& groups, const std::vector<GroupKeptStep>& steps, KeptValues& values);
void groupsOf(const KeptValues& values, const std::vector<GroupKeptStep>& steps, GroupData& groups);

// Bodies: their text in the groups, in blocks of bytes in a DWG object.
bool isKeptBody(const ProxyData& data);
bool readKeptBody(AcDbDwgFiler& filer, ProxyData& data);
bool writeKeptBody(AcDbDwgFiler& filer, const ProxyData& data);

// The descriptions.
KeptForm keptVisualStyle();
const std::vector<KeptForm>& keptEntityForms();
const std::vector<KeptForm>& keptObjectForms();

}  // namespace sg::model
