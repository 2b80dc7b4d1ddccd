#include <algorithm>

#include "base/text.h"
#include "host/editor/file_dialog.h"
#include "host/editor/jig/drag_input.h"
#include "host/editor/prompts/object_snap.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/lisp/functions/list_builder.h"
#include "host/seam/entity_lists.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/lisp_points.h"
#include "host/seam/prompting.h"
#include "host/system/paths.h"
#include "platform/ed/display.h"

// AutoLISP's functions on input devices, the display and file choosers.

namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

// ---- getfiled -----------------------------------------------------------------------------------

enum FileFlag {
    kNewFile = 1,
    kAnyExtension = 4,
    kNameOnSupportPath = 8,
    kDefaultIsFolder = 16,
    kNoQuestion = 32
};

// "dwg;dxf" as what a chooser offers.
std::wstring filterOf(const std::wstring& extensions) {
    if (extensions.empty() || extensions == L"*") return {};
    std::wstring patterns;
    for (size_t at = 0; at <= extensions.size();) {
        const size_t end = std::min(extensions.find(L';', at), extensions.size());
        patterns += (patterns.empty() ? L"*." : L";*.") + extensions.substr(at, end - at);
        at = end + 1;
    }
    return patterns + L"|" + patterns + L"||";
}

// Where the chooser begins: a folder, a name in one, or a name.
void placeDialog(FileDialog& dialog, const std::wstring& given, bool isFolder) {
    if (given.empty()) return;
    if (isFolder || given.ends_with(L'/') || given.ends_with(L'\\')) {
        dialog.request.folder = given;
        return;
    }
    dialog.request.name = lastComponent(given);
    dialog.request.folder = parentFolder(given);
}

// (getfiled title default extension flags): the path, or nil.
Value fnGetFileD(Interpreter& in, Args a) {
    Host& host = Host::the();
    const int32_t flags = in.integer(a[3]);
    const std::wstring extensions = in.str(a[2]);
    FileDialog dialog;
    dialog.request.kind =
        (flags & kNewFile) != 0 ? FileRequest::Kind::save : FileRequest::Kind::open;
    dialog.request.title = in.str(a[0]);
    dialog.request.filter = filterOf(extensions);
    placeDialog(dialog, in.str(a[1]), (flags & kDefaultIsFolder) != 0);
    dialog.mustExist = (flags & kNewFile) == 0;
    dialog.confirmsReplacing = (flags & kNewFile) != 0 && (flags & kNoQuestion) == 0;
    if ((flags & kAnyExtension) == 0 && extensions != L"*") {
        dialog.defaultExtension = extensions.substr(0, extensions.find(L';'));
    }
    const auto chosen = askForFile(host.input(), std::move(dialog));
    if (!chosen) return Value::nil();
    const std::wstring name(lastComponent(*chosen));
    const bool isOnPath =
        (flags & kNameOnSupportPath) != 0 && host.findSupportFile(name) == *chosen;
    return in.string(isOnPath ? name : *chosen);
}

// ---- grread -------------------------------------------------------------------------------------

Value deviceValue(Interpreter& in, int32_t kind, Value value) {
    in.push(value);
    ListBuilder items(in);
    items.add(Value::integer(kind));
    items.add(value);
    return items.list();
}

// (grread [track [keys [cursor]]]): (3 point) for a place that is confirmed, (5 point) for one that
// is pointed at while the cursor is tracked, (2 code) for a key, the end of a line being 13.
Value fnGrRead(Interpreter& in, Args a) {
    constexpr int32_t kKey = 2, kPick = 3, kTracked = 5, kReturn = 13, kTrack = 1;
    const bool tracks =
        a.get(0) && (!a[0].isInt() || a[0].asInt() != 0 || (in.integer(a.get(1)) & kTrack) != 0);
    Document& document = requireDocument(in);
    Host& host = Host::the();
    Prompter prompter(promptPlace(host, document), host.prompts().allowed);
    const auto step = host.input().drag(DragRequest{});
    if (!step) in.cancel();
    AcGePoint3d at;
    const bool isText = step->answer.kind == PromptAnswer::Kind::text;
    const std::wstring typed(trimmed(step->answer.text));
    if (isText && typed.empty()) return deviceValue(in, kKey, Value::integer(kReturn));
    if (isText && !parseTypedPoint(typed, prompter.context())) {
        return deviceValue(in, kKey, Value::integer(static_cast<int32_t>(typed.front())));
    }
    if (!prompter.pointOf(step->answer, at)) in.cancel();
    const bool isTracked = !step->isConfirmed && tracks;
    return deviceValue(in, isTracked ? kTracked : kPick, pointValue(in, at));
}

// ---- The display --------------------------------------------------------------------------------

// (grdraw from to color [highlight]): what is drawn so lasts until the display is drawn anew, which
// without one is at once.
Value fnGrDraw(Interpreter& in, Args a) {
    pointArgument(in, a[0]);
    pointArgument(in, a[1]);
    in.integer(a[2]);
    return Value::nil();
}

// (grvecs (color from to ...) [matrix])
Value fnGrVecs(Interpreter& in, Args a) {
    size_t points = 0;
    for (Value rest = a[0]; rest; rest = rest.asCons()->cdr) {
        if (!rest.isCons()) in.badArgument(L"listp", a[0]);
        const Value item = rest.asCons()->car;
        if (item.isInt()) continue;
        pointArgument(in, item);
        ++points;
    }
    if (points % 2 != 0) in.fail(L"bad grvecs list");
    return Value::nil();
}

// (grtext [box text [highlight]]): the text.
Value fnGrText(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::nil();
    in.integer(a[0]);
    return a.get(1) ? in.string(in.str(a[1])) : Value::nil();
}

// (redraw [name [mode]]): modes 1 to 4 show, hide, highlight and no longer highlight.
Value fnRedraw(Interpreter& in, Args a) {
    constexpr int32_t kModes = 4;
    const int32_t mode = a.get(1) ? in.integer(a[1]) : 1;
    if (mode == 0 || std::abs(mode) > kModes) in.badValue(L"mode " + std::to_wstring(mode));
    ads_name name{};
    const bool hasName = bool(a.get(0));
    if (hasName && acdbGetAdsName(name, entityArgument(in, a[0])) != Acad::eOk) {
        return Value::nil();
    }
    acedRedraw(hasName ? name : nullptr, mode);
    return Value::nil();
}

// ---- Object snaps -------------------------------------------------------------------------------

// (osnap point modes): the point that the snaps find there, or nil.
Value fnOsnap(Interpreter& in, Args a) {
    const AcGePoint3d at = pointArgument(in, a[0]);
    Document& document = requireDocument(in);
    Host& host = Host::the();
    Prompter prompter(promptPlace(host, document), host.prompts().allowed);
    const NamedSnaps snaps = namedSnaps(in.str(a[1]));
    if (snaps.empty()) return Value::nil();
    const auto found = snapPoint(*document.database(), document.selection(), snaps, at,
                                 prompter.lastPoint(), prompter.pickReach());
    return found ? pointValue(in, *found) : Value::nil();
}

constexpr FunctionRow kRows[] = {
    {L"getfiled", fnGetFileD, 4, 4}, {L"grread", fnGrRead, 0, 3}, {L"grdraw", fnGrDraw, 3, 4},
    {L"grvecs", fnGrVecs, 1, 2},     {L"grtext", fnGrText, 0, 3}, {L"redraw", fnRedraw, 0, 2},
    {L"osnap", fnOsnap, 2, 2},
};

}  // namespace

std::span<const FunctionRow> inputFunctions() {
    return kRows;
}

}  // namespace sg
