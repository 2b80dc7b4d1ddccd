#include <cmath>

#include "base/text.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/programs.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/references.h"
#include "platform/db/text_style_table.h"

namespace sg::commands {
namespace {

constexpr uint8_t kBackwards = 2;
constexpr uint8_t kUpsideDown = 4;

std::wstring askName(Command& c) {
    for (;;) {
        const std::wstring current = c.textOf(L"TEXTSTYLE");
        const std::wstring name(
            trimmed(c.text(L"Enter name of text style or [?] <" + current + L">: ")));
        if (name != L"?") return name.empty() ? current : name;
        listRecords(c, c.database().textStyleTableId(), L"Text styles:");
    }
}

// Typed names of outline fonts stand for the font, names of files for the file.
void setFont(AcDbTextStyleTableRecord& style, const std::wstring& typed) {
    const std::wstring lower = lowerCased(typed);
    const size_t comma = typed.find(L',');
    const std::wstring file(trimmed(typed.substr(0, comma)));
    style.setFont(nullptr, false, false);
    style.setFileName(file.c_str());
    style.setBigFontFileName(
        comma == std::wstring::npos ? L"" : std::wstring(trimmed(typed.substr(comma + 1))).c_str());
    const bool isFile = lower.ends_with(L".ttf") || lower.ends_with(L".shx") ||
                        lower.ends_with(L".ttc") || lower.ends_with(L".otf");
    const bool isStrokeFont = !isFile && lower == file && lower.find(L' ') == std::wstring::npos;
    if (!isFile && !isStrokeFont) style.setFont(file.c_str(), false, false);
}

// What a style is to be.
struct Shape {
    std::wstring font;  // empty: as it is
    double height = 0, factor = 1, slant = 0;
    bool backwards = false, upsideDown = false, vertical = false;
};

Shape shapeOf(const AcDbTextStyleTableRecord& style) {
    return {L"",
            style.textSize(),
            style.xScale(),
            style.obliquingAngle(),
            (style.flagBits() & kBackwards) != 0,
            (style.flagBits() & kUpsideDown) != 0,
            style.isVertical()};
}

std::wstring fontOf(const AcDbTextStyleTableRecord& style) {
    const std::wstring typeface = style.font().typeface;
    return typeface.empty() ? style.fileName() : typeface;
}

// Only stroke fonts can be vertical.
bool isOutlineFont(const std::wstring& font) {
    const std::wstring lower = lowerCased(font);
    return lower != font || lower.ends_with(L".ttf") || lower.find(L' ') != std::wstring::npos;
}

bool askSwitch(Command& c, const wchar_t* what, bool before) {
    const std::wstring otherwise = before ? L"Yes" : L"No";
    return c.yes(std::wstring(what) + L" [Yes/No] <" + otherwise + L">: ", before);
}

void askShape(Command& c, const std::wstring& fontBefore, Shape& shape) {
    shape.font = trimmed(
        c.text(L"Specify full font name or font filename (TTF or SHX) <" + fontBefore + L">: "));
    c.distance({L"Specify height of text <" + c.lengthText(shape.height) + L">: ", std::nullopt,
                Prompter::Allowed::noNegative},
               shape.height);
    constexpr int kPositive = Prompter::Allowed::noZero | Prompter::Allowed::noNegative;
    c.real(
        {L"Specify width factor <" + c.lengthText(shape.factor) + L">: ", std::nullopt, kPositive},
        shape.factor);
    c.angle({L"Specify obliquing angle <" + c.angleText(shape.slant) + L">: "}, shape.slant);
    if (shape.slant > M_PI) shape.slant -= 2 * M_PI;
    shape.backwards = askSwitch(c, L"Display text backwards?", shape.backwards);
    shape.upsideDown = askSwitch(c, L"Display text upside-down?", shape.upsideDown);
    if (!isOutlineFont(shape.font.empty() ? fontBefore : shape.font)) {
        shape.vertical = askSwitch(c, L"Vertical?", shape.vertical);
    }
}

void apply(Command& c, const Shape& shape, AcDbTextStyleTableRecord& style) {
    if (!shape.font.empty()) setFont(style, shape.font);
    style.setTextSize(shape.height);
    style.setXScale(shape.factor);
    if (style.setObliquingAngle(shape.slant) != Acad::eOk) {
        c.print(L"The obliquing angle must be from -85 to 85 degrees.");
    }
    style.setFlagBits(static_cast<uint8_t>((shape.backwards ? kBackwards : 0) |
                                           (shape.upsideDown ? kUpsideDown : 0)));
    style.setIsVertical(shape.vertical);
}

}  // namespace

void textStyle(Command& c) {
    const std::wstring name = askName(c);
    AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::textStyles, name);
    if (id.isNull()) {
        id = model::addRecord(c.database(), model::NamedIn::textStyles, name);
        c.print(id.isNull() ? L"Invalid text style name." : L"New style.");
    }
    const auto* const found = model::peek<AcDbTextStyleTableRecord>(id);
    if (found == nullptr) return;
    Shape shape;
    std::wstring font;
    {
        const model::Unguarded guard(*found);
        shape = shapeOf(*found);
        font = fontOf(*found);
    }
    askShape(c, font, shape);
    AcDbTextStyleTableRecord* style = nullptr;
    if (acdbOpenObject(style, id, AcDb::kForWrite) != Acad::eOk) return;
    apply(c, shape, *style);
    style->close();
    c.database().setTextstyle(id);
    c.print(L"\"" + name + L"\" is now the current text style.");
}

}  // namespace sg::commands
