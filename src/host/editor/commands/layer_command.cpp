#include <fmt/xchar.h>

#include <functional>

#include "base/text.h"
#include "host/editor/commands/colors.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/programs.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/references.h"
#include "platform/db/layer_table.h"

namespace sg::commands {
namespace {

using Change = std::function<void(AcDbLayerTableRecord&)>;

AcDbObjectId layerNamed(Command& c, std::wstring_view name) {
    return model::recordNamed(&c.database(), model::NamedIn::layers, trimmed(name));
}

// The layer, which is made when it is not there; null, with the reason told, for a name that no
// layer can have.
AcDbObjectId needLayer(Command& c, const std::wstring& name) {
    const AcDbObjectId known = layerNamed(c, name);
    if (!known.isNull()) return known;
    const AcDbObjectId made = model::addRecord(c.database(), model::NamedIn::layers, name);
    if (made.isNull()) c.print(L"Invalid layer name \"" + name + L"\".");
    return made;
}

void changeLayer(AcDbObjectId id, const Change& change) {
    AcDbLayerTableRecord* layer = nullptr;
    if (acdbOpenObject(layer, id, AcDb::kForWrite) != Acad::eOk) return;
    change(*layer);
    layer->close();
}

// Changes the layers of a list of names and patterns; Enter stands for the current one where the
// prompt says so.
void changeLayers(Command& c, const std::wstring& prompt, bool enterIsCurrent,
                  const Change& change) {
    std::wstring list = c.text(prompt);
    if (list.empty() && enterIsCurrent) list = c.textOf(L"CLAYER");
    std::vector<std::wstring> unknown;
    for (const NamedRecord& layer : recordsMatching(c.database().layerTableId(), list, &unknown)) {
        changeLayer(layer.id, change);
    }
    for (const std::wstring& name : unknown)
        c.print(L"No matching layer names found: " + name);
}

void turnOff(Command& c) {
    const std::wstring list =
        c.text(L"Enter name list of layer(s) to turn off or <select objects>: ");
    for (const NamedRecord& layer : recordsMatching(c.database().layerTableId(), list)) {
        const bool isCurrent = layer.id == c.database().clayer();
        if (isCurrent && !c.yes(L"Really want layer \"" + layer.name +
                                    L"\" (the CURRENT layer) off? [Yes/No] <N>: ",
                                false)) {
            continue;
        }
        changeLayer(layer.id, [](AcDbLayerTableRecord& each) { each.setIsOff(true); });
    }
}

void freeze(Command& c) {
    changeLayers(c, L"Enter name list of layer(s) to freeze or <select objects>: ", false,
                 [&](AcDbLayerTableRecord& layer) {
                     if (layer.setIsFrozen(true) != Acad::eOk) {
                         c.print(L"Cannot freeze layer \"" + layer.name() +
                                 L"\".  It is the CURRENT layer.");
                     }
                 });
}

void makeCurrent(Command& c, AcDbObjectId id) {
    const auto* const layer = model::peek<AcDbLayerTableRecord>(id);
    if (layer != nullptr && layer->isFrozen()) {
        c.print(L"Cannot make a frozen layer current.");
        return;
    }
    c.database().setClayer(id);
}

void set(Command& c) {
    const std::wstring name = c.text(L"Enter layer name to make current or <select object>: ");
    AcDbObjectId id = name.empty() ? AcDbObjectId() : layerNamed(c, name);
    if (name.empty()) {
        const auto* const entity = model::peek<AcDbEntity>(c.pick(L"Select object: "));
        if (entity != nullptr) id = entity->layerId();
    }
    if (!id.isNull()) {
        makeCurrent(c, id);
    } else if (!name.empty()) {
        c.print(L"Cannot find layer \"" + std::wstring(trimmed(name)) + L"\".");
    }
}

void make(Command& c) {
    const std::wstring current = c.textOf(L"CLAYER");
    const std::wstring name(trimmed(
        c.text(L"Enter name for new layer (becomes the current layer) <" + current + L">: ")));
    const AcDbObjectId id = needLayer(c, name.empty() ? current : name);
    if (!id.isNull()) makeCurrent(c, id);
}

void add(Command& c) {
    for (const std::wstring& name : namesIn(c.text(L"Enter name list for new layer(s): ")))
        needLayer(c, name);
}

void rename(Command& c) {
    const AcDbObjectId id = layerNamed(c, c.text(L"Enter old layer name: "));
    const std::wstring name(trimmed(c.text(L"Enter new layer name: ")));
    if (id.isNull() || id == c.database().layerZero()) {
        c.print(L"That layer cannot be renamed.");
        return;
    }
    changeLayer(id, [&](AcDbLayerTableRecord& layer) {
        if (layer.setName(name.c_str()) != Acad::eOk) c.print(L"Invalid layer name.");
    });
}

void setColor(Command& c) {
    const auto* const current = model::peek<AcDbLayerTableRecord>(c.database().clayer());
    const AcCmColor before = current == nullptr ? AcCmColor() : current->color();
    const std::wstring typed = askColor(c, L"New color [Truecolor] <" + colorText(before) + L">: ");
    // A color below 0 turns the layers off, too.
    const bool off = typed.starts_with(L'-');
    const auto color =
        typed.empty() ? before : colorNamed(std::wstring_view(typed).substr(off ? 1 : 0));
    if (!color) {
        c.print(L"A color number or standard color name is required.");
        return;
    }
    changeLayers(c,
                 L"Enter name list of layer(s) for color " + colorText(*color) + L" <" +
                     c.textOf(L"CLAYER") + L">: ",
                 true, [&](AcDbLayerTableRecord& layer) {
                     layer.setColor(*color);
                     layer.setIsOff(off);
                 });
}

void setLinetype(Command& c) {
    const std::wstring typed(trimmed(c.text(L"Enter loaded linetype name or [?] <Continuous>: ")));
    if (typed == L"?") {
        listRecords(c, c.database().linetypeTableId(), L"Linetypes:");
        return;
    }
    const std::wstring name = typed.empty() ? L"Continuous" : typed;
    const AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::linetypes, name);
    if (id.isNull()) {
        c.print(L"Linetype \"" + name + L"\" is not loaded.");
        return;
    }
    changeLayers(c,
                 L"Enter name list of layer(s) for linetype \"" + model::nameOf(id) + L"\" <" +
                     c.textOf(L"CLAYER") + L">: ",
                 true, [&](AcDbLayerTableRecord& layer) { layer.setLinetypeObjectId(id); });
}

void setLineWeight(Command& c) {
    const std::wstring typed(trimmed(c.text(L"Enter lineweight (0.0mm - 2.11mm): ")));
    const bool isDefault = typed.empty() || equalIgnoringCase(typed, L"Default");
    const auto weight = isDefault ? AcDb::kLnWtByLwDefault : lineWidthNamed(typed);
    if (!weight) {
        c.print(L"There is no lineweight of " + typed + L".");
        return;
    }
    const std::wstring shown =
        isDefault ? L"Default" : fmt::format(L"{}.{:02}mm", *weight / 100, *weight % 100);
    changeLayers(c,
                 L"Enter name list of layers(s) for lineweight " + shown + L" <" +
                     c.textOf(L"CLAYER") + L">: ",
                 true, [&](AcDbLayerTableRecord& layer) { layer.setLineWeight(*weight); });
}

void setPlotting(Command& c) {
    const bool plots = c.option(L"Enter a plotting preference [Plot/No plot] <Plot>: ") != L"No";
    changeLayers(c,
                 std::wstring(L"Enter layer name(s) for this plot preference <") +
                     c.textOf(L"CLAYER") + L">: ",
                 true, [&](AcDbLayerTableRecord& layer) { layer.setIsPlottable(plots); });
}

void describe(Command& c) {
    const std::wstring text = c.text(L"Enter the description: ");
    changeLayers(c, L"Enter name list of layer(s) for this description: ", true,
                 [&](AcDbLayerTableRecord& layer) { layer.setDescription(text.c_str()); });
}

void list(Command& c) {
    const std::wstring names = c.text(L"Enter layer name(s) to list <*>: ");
    c.print(L"Layer name       State            Color             Linetype");
    for (const NamedRecord& found :
         recordsMatching(c.database().layerTableId(), names.empty() ? L"*" : names)) {
        const auto* const layer = model::peek<AcDbLayerTableRecord>(found.id);
        std::wstring state = layer->isOff() ? L"Off" : L"On";
        if (layer->isFrozen()) state = L"Frozen";
        if (layer->isLocked()) state += L" Locked";
        c.print(fmt::format(L"{:<16} {:<16} {:<17} {}", L"\"" + found.name + L"\"", state,
                            colorText(layer->color()), model::nameOf(layer->linetypeObjectId())));
    }
    c.print(L"Current layer:  \"" + c.textOf(L"CLAYER") + L"\"");
}

struct OptionRow {
    const wchar_t* option;
    void (*run)(Command& c);
};
constexpr OptionRow kOptions[] = {
    {L"?", list},
    {L"Make", make},
    {L"Set", set},
    {L"New", add},
    {L"Rename", rename},
    {L"ON",
     [](Command& c) {
         changeLayers(c, L"Enter name list of layer(s) to turn on: ", false,
                      [](AcDbLayerTableRecord& layer) { layer.setIsOff(false); });
     }},
    {L"OFF", turnOff},
    {L"Color", setColor},
    {L"Ltype", setLinetype},
    {L"LWeight", setLineWeight},
    {L"Plot", setPlotting},
    {L"Freeze", freeze},
    {L"Thaw",
     [](Command& c) {
         changeLayers(c, L"Enter name list of layer(s) to thaw: ", false,
                      [](AcDbLayerTableRecord& layer) { layer.setIsFrozen(false); });
     }},
    {L"LOck",
     [](Command& c) {
         changeLayers(c, L"Enter name list of layer(s) to lock or <select objects>: ", false,
                      [](AcDbLayerTableRecord& layer) { layer.setIsLocked(true); });
     }},
    {L"Unlock",
     [](Command& c) {
         changeLayers(c, L"Enter name list of layer(s) to unlock or <select objects>: ", false,
                      [](AcDbLayerTableRecord& layer) { layer.setIsLocked(false); });
     }},
    {L"Description", describe},
};

}  // namespace

void layer(Command& c) {
    c.print(L"Current layer:  \"" + c.textOf(L"CLAYER") + L"\"");
    for (;;) {
        const std::wstring option = c.option(
            L"Enter an option [?/Make/Set/New/Rename/ON/OFF/Color/Ltype/LWeight/Plot/Freeze/Thaw/"
            L"LOck/Unlock/Description]: ");
        if (option.empty()) return;
        for (const OptionRow& row : kOptions) {
            if (option == row.option) row.run(c);
        }
    }
}

}  // namespace sg::commands
