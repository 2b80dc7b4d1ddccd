#include <cmath>
#include <vector>

#include "host/editor/commands/mirrored_text.h"
#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/editor/system_variables.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
using Ids = std::vector<AcDbObjectId>;
constexpr int kNoNull = Prompter::Allowed::noNull;

// A base point and a second point, or a displacement alone, as a vector in user coordinates.
struct Displacement {
    AcGePoint3d base;
    AcGeVector3d vector;
    bool isComplete = false;  // no second point is to be asked for
};

Displacement askBase(Command& c, const wchar_t* prompt) {
    Displacement given;
    const Reply reply = c.point({prompt}, given.base);
    if (reply == Reply::value) return given;
    given.base = AcGePoint3d();
    const AcGePoint3d shift =
        c.needPoint({L"Specify displacement <0.0000, 0.0000, 0.0000>: ", given.base});
    given.vector = shift.asVector();
    given.isComplete = true;
    return given;
}

// Enter makes the first point the displacement.
AcGeVector3d askSecond(Command& c, const AcGePoint3d& base) {
    AcGePoint3d second;
    const Reply reply =
        c.point({L"Specify second point or <use first point as displacement>: ", base}, second);
    return reply == Reply::value ? second - base : base.asVector();
}

}  // namespace

void erase(Command& c) {
    c.erase(c.select().ids());
}

void move(Command& c) {
    const Ids ids = c.select().ids();
    if (ids.empty()) return;
    Displacement by = askBase(c, L"Specify base point or [Displacement] <Displacement>: ");
    if (!by.isComplete) by.vector = askSecond(c, by.base);
    c.transform(ids, AcGeMatrix3d::translation(c.world(by.vector)));
}

// ---- COPY ---------------------------------------------------------------------------------------

namespace {

Ids copyBy(Command& c, const Ids& ids, const AcGeVector3d& vector) {
    const Ids copies = c.copy(ids);
    c.transform(copies, AcGeMatrix3d::translation(c.world(vector)));
    return copies;
}

// So many in a row, the first where the originals are.
void copyInRow(Command& c, const Ids& ids, const AcGePoint3d& base) {
    int32_t count = 0;
    c.integer({L"Enter number of items to array: ", std::nullopt, kNoNull | 6}, count);
    AcGePoint3d second;
    const bool fits =
        c.point({L"Specify second point or [Fit]: ", base, kNoNull}, second) == Reply::keyword;
    if (fits) second = c.needPoint({L"Specify second point: ", base});
    const AcGeVector3d step = (second - base) / (fits && count > 1 ? count - 1 : 1);
    for (int32_t i = 1; i < count; ++i)
        copyBy(c, ids, step * i);
}

// Copies to point after point until Enter.
void copySeveral(Command& c, const Ids& ids, const AcGePoint3d& base) {
    std::vector<Ids> made;
    for (;;) {
        AcGePoint3d next;
        const Reply reply =
            c.point({L"Specify second point or [Array/Exit/Undo] <Exit>: ", base}, next);
        if (reply == Reply::enter || c.is(L"Exit")) return;
        if (reply == Reply::value) {
            made.push_back(copyBy(c, ids, next - base));
        } else if (c.is(L"Array")) {
            copyInRow(c, ids, base);
        } else if (made.empty()) {
            c.print(L"All copies already undone.");
        } else {
            c.erase(made.back());
            made.pop_back();
        }
    }
}

}  // namespace

void copy(Command& c) {
    const Ids ids = c.select().ids();
    if (ids.empty()) return;
    const Displacement by = askBase(c, L"Specify base point or [Displacement] <Displacement>: ");
    if (by.isComplete) {
        copyBy(c, ids, by.vector);
        return;
    }
    AcGePoint3d second;
    const Reply reply = c.point(
        {L"Specify second point or [Array] <use first point as displacement>: ", by.base}, second);
    if (reply == Reply::keyword) {
        copyInRow(c, ids, by.base);
        return;
    }
    copyBy(c, ids, reply == Reply::value ? second - by.base : by.base.asVector());
    if (reply == Reply::value && !c.isFromProgram()) copySeveral(c, ids, by.base);
}

// ---- ROTATE and SCALE ---------------------------------------------------------------------------

namespace {

double referenceRotation(Command& c, const AcGePoint3d& base) {
    double from = 0, to = 0;
    c.angle({L"Specify the reference angle <0>: "}, from);
    if (c.angle({L"Specify the new angle or [Points] <0>: ", base}, to) == Reply::keyword) {
        c.angle({L"Specify first point: ", std::nullopt, kNoNull}, to);
    }
    return to - from;
}

double askLength(Command& c, const wchar_t* prompt, const Prompter::Point& base) {
    constexpr int kPositive = Prompter::Allowed::noZero | Prompter::Allowed::noNegative;
    double length = 1;
    if (c.distance({prompt, base, kPositive}, length) == Reply::keyword) {
        c.distance({L"Specify first point: ", std::nullopt, kPositive | kNoNull}, length);
    }
    return length;
}

}  // namespace

void rotate(Command& c) {
    const bool clockwise = c.whole(L"ANGDIR") != 0;
    c.print(std::wstring(L"Current positive angle in UCS:  ANGDIR=") +
            (clockwise ? L"clockwise" : L"counterclockwise") + L"  ANGBASE=" +
            c.angleText(c.number(L"ANGBASE")));
    Ids ids = c.select().ids();
    if (ids.empty()) return;
    const AcGePoint3d base = c.needPoint({L"Specify base point: "});
    double angle = 0;
    while (c.angle({L"Specify rotation angle or [Copy/Reference] <0>: ", base}, angle) ==
           Reply::keyword) {
        if (c.is(L"Reference")) {
            angle = referenceRotation(c, base);
            break;
        }
        c.print(L"Rotating a copy of the selected objects.");
        ids = c.copy(ids);
    }
    c.transform(ids, AcGeMatrix3d::rotation(angle, drawingNormal(c), c.world(base)));
}

void scale(Command& c) {
    Ids ids = c.select().ids();
    if (ids.empty()) return;
    const AcGePoint3d base = c.needPoint({L"Specify base point: "});
    constexpr int kBits = kNoNull | Prompter::Allowed::noZero | Prompter::Allowed::noNegative;
    double factor = 1;
    while (c.distance({L"Specify scale factor or [Copy/Reference]: ", base, kBits}, factor) ==
           Reply::keyword) {
        if (c.is(L"Reference")) {
            const double from = askLength(c, L"Specify reference length <1.0000>: ", std::nullopt);
            factor = askLength(c, L"Specify new length or [Points] <1.0000>: ", base) / from;
            break;
        }
        c.print(L"Scaling a copy of the selected objects.");
        ids = c.copy(ids);
    }
    c.transform(ids, AcGeMatrix3d::scaling(factor, c.world(base)));
}

// ---- MIRROR -------------------------------------------------------------------------------------

void mirror(Command& c) {
    Ids ids = c.select().ids();
    if (ids.empty()) return;
    const AcGePoint3d first = c.needPoint({L"Specify first point of mirror line: "});
    const AcGePoint3d second = c.needPoint({L"Specify second point of mirror line: ", first});
    const bool erases = c.yes(L"Erase source objects? [Yes/No] <No>: ", false);
    const AcGeVector3d along = c.world(second - first);
    const AcGeVector3d across = along.crossProduct(drawingNormal(c));
    if (across.isZeroLength()) {
        c.print(L"The points of the mirror line are one.");
        return;
    }
    if (!erases) ids = c.copy(ids);
    const AcGeMatrix3d matrix = AcGeMatrix3d::mirroring(c.world(first), across.normal());
    const bool keepsTexts = c.whole(L"MIRRTEXT") == 0;
    for (const AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
        entity->transformBy(keepsTexts ? readableMirroring(*entity, matrix) : matrix);
        entity->close();
    }
}

}  // namespace sg::commands
