#include <cmath>
#include <memory>

#include "base/text.h"
#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/system_variables.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/references.h"
#include "platform/db/mtext.h"
#include "platform/db/text.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
constexpr int kNoNull = Prompter::Allowed::noNull;
constexpr int kPositive = Prompter::Allowed::noZero | Prompter::Allowed::noNegative;

struct Justification {
    const wchar_t* name;
    AcDb::TextHorzMode horizontal;
    AcDb::TextVertMode vertical;
    const wchar_t* prompt;
};
constexpr Justification kJustifications[] = {
    {L"Left", AcDb::kTextLeft, AcDb::kTextBase, L"Specify start point of text: "},
    {L"Center", AcDb::kTextCenter, AcDb::kTextBase, L"Specify center point of text: "},
    {L"Right", AcDb::kTextRight, AcDb::kTextBase, L"Specify right endpoint of text baseline: "},
    {L"Align", AcDb::kTextAlign, AcDb::kTextBase, L"Specify first endpoint of text baseline: "},
    {L"Middle", AcDb::kTextMid, AcDb::kTextBase, L"Specify middle point of text: "},
    {L"Fit", AcDb::kTextFit, AcDb::kTextBase, L"Specify first endpoint of text baseline: "},
    {L"TL", AcDb::kTextLeft, AcDb::kTextTop, L"Specify top-left point of text: "},
    {L"TC", AcDb::kTextCenter, AcDb::kTextTop, L"Specify top-center point of text: "},
    {L"TR", AcDb::kTextRight, AcDb::kTextTop, L"Specify top-right point of text: "},
    {L"ML", AcDb::kTextLeft, AcDb::kTextVertMid, L"Specify middle-left point of text: "},
    {L"MC", AcDb::kTextCenter, AcDb::kTextVertMid, L"Specify middle point of text: "},
    {L"MR", AcDb::kTextRight, AcDb::kTextVertMid, L"Specify middle-right point of text: "},
    {L"BL", AcDb::kTextLeft, AcDb::kTextBottom, L"Specify bottom-left point of text: "},
    {L"BC", AcDb::kTextCenter, AcDb::kTextBottom, L"Specify bottom-center point of text: "},
    {L"BR", AcDb::kTextRight, AcDb::kTextBottom, L"Specify bottom-right point of text: "},
};
constexpr const wchar_t* kJustificationWords =
    L"Left Center Right Align Middle Fit TL TC TR ML MC MR BL BC BR";

const Justification* justificationNamed(std::wstring_view name) {
    for (const Justification& row : kJustifications) {
        if (name == row.name) return &row;
    }
    return nullptr;
}

// The style's own height; 0 when each text has its own.
double heightOfStyle(const AcDbDatabase& database) {
    const auto* const style = model::peek<AcDbTextStyleTableRecord>(database.textstyle());
    return style == nullptr ? 0 : style->textSize();
}

void askStyle(Command& c) {
    for (;;) {
        const std::wstring name =
            c.text(L"Enter style name or [?] <" + c.textOf(L"TEXTSTYLE") + L">: ");
        if (name.empty()) return;
        const AcDbObjectId id =
            model::recordNamed(&c.database(), model::NamedIn::textStyles, trimmed(name));
        if (!id.isNull()) {
            c.database().setTextstyle(id);
            return;
        }
        c.print(L"Cannot find text style \"" + std::wstring(trimmed(name)) + L"\".");
    }
}

double askHeight(Command& c, const AcGePoint3d& base) {
    if (const double fixed = heightOfStyle(c.database()); fixed > 0) return fixed;
    double height = c.number(L"TEXTSIZE");
    c.distance({L"Specify height <" + c.lengthText(height) + L">: ", base, kPositive}, height);
    c.variables().set(L"TEXTSIZE", height);
    return height;
}

// A text that is being written, in user coordinates.
struct Writing {
    const Justification* how = &kJustifications[0];
    AcGePoint3d at, second;
    double height = 0;
    double rotation = 0;
};

bool isBetweenPoints(const Writing& writing) {
    return writing.how->horizontal == AcDb::kTextAlign || writing.how->horizontal == AcDb::kTextFit;
}

void askPlace(Command& c, Writing& writing) {
    const Justification* named = nullptr;
    while (named == nullptr) {
        const Reply reply = c.point({L"Specify start point of text or [Justify/Style]: ",
                                     std::nullopt, kNoNull, kJustificationWords},
                                    writing.at);
        if (reply == Reply::value) return;
        if (c.is(L"Style")) {
            askStyle(c);
        } else if (c.is(L"Justify")) {
            named = justificationNamed(
                c.option(L"Enter an option "
                         L"[Left/Center/Right/Align/Middle/Fit/TL/TC/TR/ML/MC/MR/BL/BC/BR]: "));
        } else {
            named = justificationNamed(c.keyword());
        }
    }
    writing.how = named;
    writing.at = c.needPoint({named->prompt});
    if (isBetweenPoints(writing)) {
        writing.second = c.needPoint({L"Specify second endpoint of text baseline: ", writing.at});
    }
}

void askShape(Command& c, Writing& writing) {
    const bool isAligned = writing.how->horizontal == AcDb::kTextAlign;
    writing.height = isAligned ? c.number(L"TEXTSIZE") : askHeight(c, writing.at);
    if (isBetweenPoints(writing)) {
        const AcGeVector3d along = writing.second - writing.at;
        writing.rotation = std::atan2(along.y, along.x);
        return;
    }
    c.direction({L"Specify rotation angle of text <" + c.angleText(0) + L">: ", writing.at},
                writing.rotation);
}

void addText(Command& c, const Writing& writing, const std::wstring& contents) {
    const AcGePoint3d at = c.world(writing.at);
    auto made =
        std::make_unique<AcDbText>(at, contents.c_str(), c.database().textstyle(), writing.height);
    made->setDatabaseDefaults(&c.database());
    made->setNormal(drawingNormal(c));
    made->setHeight(writing.height);
    made->setPosition(at);
    made->setRotation(angleOnPlane(c, writing.rotation));
    made->setHorizontalMode(writing.how->horizontal);
    made->setVerticalMode(writing.how->vertical);
    if (!made->isDefaultAlignment()) {
        made->setAlignmentPoint(isBetweenPoints(writing) ? c.world(writing.second) : at);
        made->adjustAlignment(&c.database());
    }
    c.append(std::move(made));
}

// Where the line below begins.
void moveDown(Writing& writing) {
    const AcGeVector3d down(std::sin(writing.rotation), -std::cos(writing.rotation), 0);
    constexpr double kLineSpacing = 5.0 / 3;
    writing.at += down * (writing.height * kLineSpacing);
    writing.second += down * (writing.height * kLineSpacing);
}

void writeText(Command& c, bool severalLines) {
    c.print(L"Current text style:  \"" + c.textOf(L"TEXTSTYLE") + L"\"  Text height:  " +
            c.lengthText(c.number(L"TEXTSIZE")) + L"  Annotative:  No  Justify:  Left");
    Writing writing;
    askPlace(c, writing);
    askShape(c, writing);
    do {
        const std::wstring contents = c.text(L"Enter text: ");
        if (contents.empty()) return;
        addText(c, writing, contents);
        moveDown(writing);
    } while (severalLines);
}

}  // namespace

void text(Command& c) {
    writeText(c, !c.isFromProgram());
}

void textLines(Command& c) {
    writeText(c, true);
}

// ---- MTEXT --------------------------------------------------------------------------------------

namespace {

constexpr const wchar_t* kAttachments[] = {L"TL", L"TC", L"TR", L"ML", L"MC",
                                           L"MR", L"BL", L"BC", L"BR"};

struct Paragraph {
    AcDbMText::AttachmentPoint attachment = AcDbMText::kTopLeft;
    double height = 0;
    double rotation = 0;
    double width = -1;  // below 0: not asked for yet
    double spacing = 1;
    AcDbMText::LineSpacingStyle spacingStyle = AcDbMText::kAtLeast;
};

void askSpacing(Command& c, Paragraph& paragraph) {
    const std::wstring style = c.option(L"Enter line spacing type [At least/Exactly] <At least>: ");
    if (!style.empty()) {
        paragraph.spacingStyle = style == L"Exactly" ? AcDbMText::kExactly : AcDbMText::kAtLeast;
    }
    std::wstring factor = c.word(L"Enter line spacing factor or distance <1.0000x>: ");
    if (factor.empty()) return;
    const bool isFactor = factor.ends_with(L'x') || factor.ends_with(L'X');
    const double value = std::wcstod(factor.c_str(), nullptr);
    paragraph.spacing = isFactor ? value : value / (paragraph.height * 5 / 3);
}

void takeOption(Command& c, Paragraph& paragraph, const AcGePoint3d& first) {
    if (c.is(L"Height")) {
        c.distance(
            {L"Specify height <" + c.lengthText(paragraph.height) + L">: ", first, kPositive},
            paragraph.height);
        c.variables().set(L"TEXTSIZE", paragraph.height);
    } else if (c.is(L"Justify")) {
        const std::wstring word =
            c.option(L"Enter justification [TL/TC/TR/ML/MC/MR/BL/BC/BR] <TL>: ");
        for (int i = 0; i < 9; ++i) {
            if (word == kAttachments[i]) {
                paragraph.attachment = static_cast<AcDbMText::AttachmentPoint>(i + 1);
            }
        }
    } else if (c.is(L"Line")) {
        askSpacing(c, paragraph);
    } else if (c.is(L"Rotation")) {
        c.direction({L"Specify rotation angle <" + c.angleText(0) + L">: ", first},
                    paragraph.rotation);
    } else if (c.is(L"Style")) {
        askStyle(c);
        if (const double fixed = heightOfStyle(c.database()); fixed > 0) paragraph.height = fixed;
    } else {
        c.distance({L"Specify width: ", first, kNoNull | Prompter::Allowed::noNegative},
                   paragraph.width);
    }
}

// Of a box that is drawn, the corner or edge that the text is attached to.
AcGePoint3d placeIn(const AcGePoint3d& a, const AcGePoint3d& b,
                    AcDbMText::AttachmentPoint attachment) {
    const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
    const double left = std::min(a.x, b.x), right = std::max(a.x, b.x);
    const double bottom = std::min(a.y, b.y), top = std::max(a.y, b.y);
    return {left + (right - left) * column / 2, top + (bottom - top) * row / 2, a.z};
}

std::wstring askParagraphs(Command& c) {
    std::wstring contents;
    for (;;) {
        const std::wstring line = c.text(L"MText: ");
        if (line.empty()) return contents;
        contents += (contents.empty() ? L"" : L"\\P") + line;
    }
}

}  // namespace

void paragraphText(Command& c) {
    Paragraph paragraph;
    const double fixed = heightOfStyle(c.database());
    paragraph.height = fixed > 0 ? fixed : c.number(L"TEXTSIZE");
    c.print(L"Current text style:  \"" + c.textOf(L"TEXTSTYLE") + L"\"  Text height:  " +
            c.lengthText(paragraph.height) + L"  Annotative:  No");
    AcGePoint3d at = c.needPoint({L"Specify first corner: "});
    while (paragraph.width < 0) {
        AcGePoint3d corner;
        const Reply reply = c.corner({L"Specify opposite corner or [Height/Justify/Line "
                                      L"spacing/Rotation/Style/Width]: ",
                                      at, kNoNull},
                                     corner);
        if (reply == Reply::keyword) {
            takeOption(c, paragraph, at);
            continue;
        }
        paragraph.width = std::abs(corner.x - at.x);
        at = placeIn(at, corner, paragraph.attachment);
    }
    const std::wstring contents = askParagraphs(c);
    if (contents.empty()) return;
    auto made = std::make_unique<AcDbMText>();
    made->setDatabaseDefaults(&c.database());
    made->setNormal(drawingNormal(c));
    made->setLocation(c.world(at));
    made->setDirection(
        c.world(AcGeVector3d(std::cos(paragraph.rotation), std::sin(paragraph.rotation), 0)));
    made->setTextHeight(paragraph.height);
    made->setWidth(paragraph.width);
    made->setAttachment(paragraph.attachment);
    made->setLineSpacingStyle(paragraph.spacingStyle);
    if (made->setLineSpacingFactor(paragraph.spacing) != Acad::eOk) {
        c.print(L"The line spacing must be from 0.25x to 4x.");
    }
    made->setContents(contents.c_str());
    c.append(std::move(made));
}

}  // namespace sg::commands
