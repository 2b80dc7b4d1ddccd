#include <functional>
#include <optional>
#include <vector>

#include "base/text.h"
#include "host/editor/commands/colors.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/programs.h"
#include "host/model/access/object_changer.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "platform/lisp/resbuf.h"

// The command that changes the properties of entities.

namespace sg::commands {
namespace {

using Ids = std::vector<AcDbObjectId>;
using Change = std::function<bool(AcDbEntity&)>;  // false and the entity stays as it was

void changeAll(Command& c, const Ids& ids, const Change& change) {
    size_t refused = 0;
    for (const AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) {
            ++refused;
        } else if (change(*entity)) {
            entity->close();
        } else {
            entity->cancel();
            ++refused;
        }
    }
    if (refused > 0) c.print(std::to_wstring(refused) + L" could not be changed.");
}

void changeColor(Command& c, const Ids& ids) {
    const std::wstring typed = askColor(c, L"New color [Truecolor] <BYLAYER>: ");
    std::optional<AcCmColor> color = AcCmColor();
    if (equalIgnoringCase(typed, L"BYBLOCK") || typed == L"0") {
        color->setColorIndex(0);
    } else if (!typed.empty() && !equalIgnoringCase(typed, L"BYLAYER") && typed != L"256") {
        color = colorNamed(typed);
    }
    if (!color) {
        c.print(L"A color number or standard color name is required.");
        return;
    }
    changeAll(c, ids, [&](AcDbEntity& entity) { return entity.setColor(*color) == Acad::eOk; });
}

void changeLayer(Command& c, const Ids& ids) {
    const std::wstring name(trimmed(c.text(L"Enter new layer name: ")));
    if (name.empty()) return;
    const AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::layers, name);
    if (id.isNull()) {
        c.print(L"Cannot find layer \"" + name + L"\".");
        return;
    }
    changeAll(c, ids, [&](AcDbEntity& entity) { return entity.setLayer(id) == Acad::eOk; });
}

void changeLinetype(Command& c, const Ids& ids) {
    const std::wstring typed(trimmed(c.text(L"Enter new linetype name <ByLayer>: ")));
    const std::wstring name = typed.empty() ? L"ByLayer" : typed;
    const AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::linetypes, name);
    if (id.isNull()) {
        c.print(L"Linetype \"" + name + L"\" is not loaded.");
        return;
    }
    changeAll(c, ids, [&](AcDbEntity& entity) { return entity.setLinetype(id) == Acad::eOk; });
}

void changeLinetypeScale(Command& c, const Ids& ids) {
    double scale = 1;
    c.real({L"Specify new linetype scale <1.0000>: ", std::nullopt,
            Prompter::Allowed::noZero | Prompter::Allowed::noNegative},
           scale);
    changeAll(c, ids,
              [&](AcDbEntity& entity) { return entity.setLinetypeScale(scale) == Acad::eOk; });
}

void changeLineWeight(Command& c, const Ids& ids) {
    const std::wstring typed(trimmed(c.text(L"Enter new lineweight <ByLayer>: ")));
    std::optional weight = AcDb::kLnWtByLayer;
    if (equalIgnoringCase(typed, L"ByBlock")) {
        weight = AcDb::kLnWtByBlock;
    } else if (equalIgnoringCase(typed, L"Default")) {
        weight = AcDb::kLnWtByLwDefault;
    } else if (!typed.empty() && !equalIgnoringCase(typed, L"ByLayer")) {
        weight = lineWidthNamed(typed);
    }
    if (!weight) {
        c.print(L"There is no lineweight of " + typed + L".");
        return;
    }
    changeAll(c, ids,
              [&](AcDbEntity& entity) { return entity.setLineWeight(*weight) == Acad::eOk; });
}

void changeThickness(Command& c, const Ids& ids) {
    double thickness = 0;
    c.real({L"Specify new thickness <0.0000>: "}, thickness);
    resbuf group{};
    group.restype = 39;
    group.resval.rreal = thickness;
    changeAll(c, ids, [&](AcDbEntity& entity) { return model::changeObject(entity, &group); });
}

struct OptionRow {
    const wchar_t* option;
    void (*run)(Command& c, const Ids& ids);
};
constexpr OptionRow kOptions[] = {
    {L"Color", changeColor},        {L"LAyer", changeLayer},
    {L"LType", changeLinetype},     {L"ltScale", changeLinetypeScale},
    {L"LWeight", changeLineWeight}, {L"Thickness", changeThickness},
};

}  // namespace

void properties(Command& c) {
    const Ids ids = c.select().ids();
    while (!ids.empty()) {
        const std::wstring option =
            c.option(L"Enter property to change [Color/LAyer/LType/ltScale/LWeight/Thickness]: ");
        if (option.empty()) return;
        for (const OptionRow& row : kOptions) {
            if (option == row.option) row.run(c, ids);
        }
    }
}

}  // namespace sg::commands
