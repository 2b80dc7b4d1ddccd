#include <cmath>
#include <memory>

#include "base/text.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/system_variables.h"
#include "host/lisp/text/units.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/references.h"
#include "host/system/paths.h"
#include "platform/db/attribute.h"
#include "platform/db/block_reference.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
constexpr int kNoNull = Prompter::Allowed::noNull;

// The block that a name or a drawing file stands for; null, with the reason told, for none.
AcDbObjectId blockFor(Command& c, const std::wstring& name) {
    const size_t equals = name.find(L'=');
    const std::wstring file = equals == std::wstring::npos ? name : name.substr(equals + 1);
    std::wstring block =
        equals == std::wstring::npos ? std::wstring(lastComponent(name)) : name.substr(0, equals);
    if (const size_t dot = block.rfind(L'.'); dot != std::wstring::npos && dot > 0) {
        block.resize(dot);
    }
    if (equals == std::wstring::npos) {
        const AcDbObjectId known = model::recordNamed(&c.database(), model::NamedIn::blocks, name);
        if (!known.isNull()) return known;
    }
    std::wstring path;
    const bool hasEnding = lastComponent(file).find(L'.') != std::wstring_view::npos;
    const std::wstring wanted = hasEnding ? file : file + L".dwg";
    AcDbObjectId id;
    if (acdbHostApplicationServices()->findFile(path, wanted.c_str()) != Acad::eOk) {
        c.print(L"\"" + wanted + L"\" cannot be found.");
        return id;
    }
    AcDbDatabase source(false, true);
    if (source.readDwgFile(path.c_str()) != Acad::eOk) {
        c.print(L"\"" + path + L"\" cannot be read as a drawing.");
    } else if (c.database().insert(id, block.c_str(), &source) != Acad::eOk) {
        c.print(L"\"" + block + L"\" cannot be a block of this drawing.");
    }
    return id;
}

// How a block is placed, in user coordinates.
struct Placing {
    AcGePoint3d at;
    AcGeScale3d scale;
    bool hasScale = false;
    double rotation = 0;
    bool hasRotation = false;
    AcGeVector3d fromBase;  // of another base point
};

double askFactor(Command& c, const std::wstring& prompt, double otherwise) {
    double factor = otherwise;
    c.real({prompt, std::nullopt, Prompter::Allowed::noZero}, factor);
    return factor;
}

// False when one of the options before the place was answered.
bool askPlace(Command& c, Placing& placing) {
    const Reply reply = c.point({L"Specify insertion point or [Basepoint/Scale/X/Y/Z/Rotate]: ",
                                 std::nullopt, kNoNull, L"PScale PX PY PZ PRotate"},
                                placing.at);
    if (reply == Reply::value) return true;
    if (c.is(L"Basepoint")) {
        placing.fromBase = c.needPoint({L"Specify base point: "}).asVector();
    } else if (c.is(L"Rotate") || c.is(L"PRotate")) {
        c.direction({L"Specify rotation angle <" + c.angleText(0) + L">: "}, placing.rotation);
        placing.hasRotation = true;
    } else if (c.is(L"Scale") || c.is(L"PScale")) {
        const double factor = askFactor(c, L"Specify scale factor for XYZ axes <1>: ", 1);
        placing.scale = {factor, factor, factor};
        placing.hasScale = true;
    } else {
        const wchar_t axis = c.keyword().back();
        const double factor =
            askFactor(c, L"Specify " + std::wstring(1, axis) + L" scale factor <1>: ", 1);
        (axis == L'X'   ? placing.scale.sx
         : axis == L'Y' ? placing.scale.sy
                        : placing.scale.sz) = factor;
        placing.hasScale = true;
    }
    return false;
}

void takeCorner(Placing& placing, const AcGePoint3d& corner) {
    placing.scale.sx = corner.x - placing.at.x;
    placing.scale.sy = corner.y - placing.at.y;
    placing.scale.sz = std::abs(placing.scale.sx);
}

void askFactors(Command& c, Placing& placing) {
    placing.scale.sx = askFactor(c, L"Specify X scale factor <1>: ", 1);
    placing.scale.sy =
        askFactor(c, L"Enter Y scale factor <use X scale factor>: ", placing.scale.sx);
    placing.scale.sz =
        askFactor(c, L"Specify Z scale factor or <use X scale factor>: ", placing.scale.sx);
}

// A number is the factor, a point the other corner of what a block of size 1 covers.
void askScale(Command& c, Placing& placing) {
    for (;;) {
        AcGePoint3d corner;
        double x = 1;
        const Reply reply =
            c.point({L"Enter X scale factor, specify opposite corner, or [Corner/XYZ] <1>: ",
                     placing.at, Prompter::Allowed::anyText},
                    corner);
        if (reply == Reply::value) return takeCorner(placing, corner);
        if (reply == Reply::keyword && c.is(L"XYZ")) return askFactors(c, placing);
        if (reply == Reply::keyword && c.is(L"Corner")) {
            c.corner({L"Specify opposite corner: ", placing.at, kNoNull}, corner);
            return takeCorner(placing, corner);
        }
        const auto typed =
            reply == Reply::keyword ? parseDistance(c.keyword(), c.whole(L"LUNITS")) : x;
        if (!typed || *typed == 0) {
            c.print(L"Requires numeric distance, second point, or option keyword.");
            continue;
        }
        x = *typed;
        placing.scale.sx = x;
        placing.scale.sy = askFactor(c, L"Enter Y scale factor <use X scale factor>: ", x);
        placing.scale.sz = x;
        return;
    }
}

// ---- Attributes ---------------------------------------------------------------------------------

std::vector<const AcDbAttributeDefinition*> definitionsOf(AcDbObjectId block) {
    std::vector<const AcDbAttributeDefinition*> all;
    const auto* const record = model::peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) return all;
    for (const AcDbObjectId id : record->entityIds()) {
        const auto* const definition = model::peek<AcDbAttributeDefinition>(id);
        if (definition != nullptr && !definition->isErased() && !definition->isConstant()) {
            all.push_back(definition);
        }
    }
    return all;
}

// What is asked for each attribute, or that it has without asking.
std::vector<std::wstring> askAttributes(
    Command& c, const std::vector<const AcDbAttributeDefinition*>& definitions) {
    std::vector<std::wstring> values;
    const bool asks = c.whole(L"ATTREQ") != 0;
    bool told = false;
    for (const AcDbAttributeDefinition* definition : definitions) {
        const model::Unguarded guard(*definition);
        values.push_back(definition->textString());
        if (!asks || definition->isPreset()) continue;
        if (!told) c.print(L"Enter attribute values");
        told = true;
        std::wstring prompt =
            definition->prompt().empty() ? definition->tag() : definition->prompt();
        if (!values.back().empty()) prompt += L" <" + values.back() + L">";
        const std::wstring value = c.text(prompt + L": ");
        if (!value.empty()) values.back() = value;
    }
    for (size_t i = 0; i < values.size(); ++i) {
        if (!asks || !definitions[i]->isVerifiable()) continue;
        if (i == 0) c.print(L"Verify attribute values");
        const std::wstring value = c.text(definitions[i]->prompt() + L" <" + values[i] + L">: ");
        if (!value.empty()) values[i] = value;
    }
    return values;
}

void appendAttributes(AcDbBlockReference& reference,
                      const std::vector<const AcDbAttributeDefinition*>& definitions,
                      const std::vector<std::wstring>& values) {
    for (size_t i = 0; i < definitions.size(); ++i) {
        auto attribute = std::make_unique<AcDbAttribute>();
        const model::Unguarded guard(*definitions[i]);
        attribute->setPropertiesFrom(definitions[i]);
        attribute->setAttributeFromBlock(definitions[i], reference.blockTransform());
        attribute->setTextString(values[i].c_str());
        if (!attribute->isDefaultAlignment()) attribute->adjustAlignment(reference.database());
        if (reference.appendAttribute(attribute.get()) == Acad::eOk) attribute.release()->close();
    }
}

AcDbObjectId addReference(Command& c, AcDbObjectId block, const Placing& placing,
                          const std::vector<const AcDbAttributeDefinition*>& definitions,
                          const std::vector<std::wstring>& values) {
    const AcGeVector3d normal = drawingNormal(c);
    auto made = std::make_unique<AcDbBlockReference>(c.world(placing.at), block);
    made->setNormal(normal);
    made->setScaleFactors(placing.scale);
    made->setRotation(angleOnPlane(c, placing.rotation));
    made->setPosition(c.world(placing.at) - made->blockTransform() * placing.fromBase);
    const AcDbObjectId id = c.add(std::move(made));
    AcDbBlockReference* reference = nullptr;
    if (!definitions.empty() && acdbOpenObject(reference, id, AcDb::kForWrite) == Acad::eOk) {
        appendAttributes(*reference, definitions, values);
        reference->close();
    }
    return id;
}

// Puts the entities of the block there in place of a reference.
void insertExploded(Command& c, AcDbObjectId block, Placing& placing) {
    placing.at = c.needPoint({L"Specify insertion point for block: "});
    const double factor = askFactor(c, L"Specify scale factor for XYZ axes <1>: ", 1);
    placing.scale = {factor, factor, factor};
    c.direction({L"Specify rotation angle <" + c.angleText(0) + L">: ", placing.at},
                placing.rotation);
    const AcDbObjectId id = addReference(c, block, placing, {}, {});
    AcDbBlockReference* reference = nullptr;
    if (acdbOpenObject(reference, id, AcDb::kForWrite) != Acad::eOk) return;
    reference->explodeToOwnerSpace();
    reference->erase();
    reference->close();
}

std::wstring askName(Command& c) {
    for (;;) {
        const std::wstring before = c.textOf(L"INSNAME");
        const std::wstring name = std::wstring(trimmed(c.text(
            L"Enter block name or [?]" + (before.empty() ? L"" : L" <" + before + L">") + L": ")));
        if (name == L"?") {
            listRecords(c, c.database().blockTableId(), L"Defined blocks.");
        } else if (!name.empty() || !before.empty()) {
            return name.empty() ? before : name;
        }
    }
}

}  // namespace

void insert(Command& c) {
    std::wstring name = askName(c);
    const bool explodes = name.starts_with(L'*') && name.size() > 1;
    if (explodes) name.erase(0, 1);
    const AcDbObjectId block = blockFor(c, name);
    if (block.isNull()) return;
    if (block == c.database().currentSpaceId()) {
        c.print(L"A space cannot be inserted into itself.");
        return;
    }
    c.variables().set(L"INSNAME", model::nameOf(block));
    Placing placing;
    if (explodes) {
        insertExploded(c, block, placing);
        return;
    }
    while (!askPlace(c, placing)) {
    }
    if (!placing.hasScale) askScale(c, placing);
    if (!placing.hasRotation) {
        c.direction({L"Specify rotation angle <" + c.angleText(0) + L">: ", placing.at},
                    placing.rotation);
    }
    const auto definitions = definitionsOf(block);
    addReference(c, block, placing, definitions, askAttributes(c, definitions));
}

}  // namespace sg::commands
