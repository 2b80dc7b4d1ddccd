#include <cmath>
#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "drawing/last_line_width.h"
#include "drawing/lisp_functions.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/db/mtext.h"

namespace sg {
namespace {

enum class IfUnopened { badData, nil };

// Reads the text and opens it; `answer` sets the result and answers the call's code.
template <class Answer>
int onText(CallArguments& arguments, AcDb::OpenMode mode, IfUnopened unopened,
           const Answer& answer) {
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    acedRetNil();
    const Opened<AcDbMText> text(id, mode);
    if (!text) return unopened == IfUnopened::badData ? kLispBadData : kLispOk;
    return answer(*text);
}

// With a further argument, which is read before the text is opened.
template <class Value, class Answer>
int onText(bool (*read)(const resbuf*&, Value&), const Answer& answer) {
    CallArguments arguments;
    AcDbObjectId id;
    Value value{};
    if (!nextObjectId(arguments.next, id) || !read(arguments.next, value)) return kLispWrongType;
    acedRetNil();
    const Opened<AcDbMText> text(id, AcDb::kForWrite);
    if (text) answer(*text, value);
    return kLispOk;
}

// The quadrant is lost, and the quarter turns are short ones.
void retAngle(const AcGeVector3d& direction) {
    constexpr double kUp = 1.57079;
    if (direction.x != 0) {
        acedRetReal(std::atan(direction.y / direction.x));
    } else if (direction.y != 0) {
        acedRetReal(direction.y > 0 ? kUp : -kUp);
    }
}

}  // namespace

int mtextActualHeight() {
    CallArguments arguments;
    return onText(arguments, AcDb::kForRead, IfUnopened::badData, [](const AcDbMText& text) {
        acedRetReal(text.contents().empty() ? text.textHeight() : text.actualHeight());
        return kLispOk;
    });
}

int mtextActualWidth() {
    CallArguments arguments;
    return onText(arguments, AcDb::kForRead, IfUnopened::badData, [](const AcDbMText& text) {
        acedRetReal(text.actualWidth());
        return kLispOk;
    });
}

int mtextAscent() {
    CallArguments arguments;
    return onText(arguments, AcDb::kForWrite, IfUnopened::nil, [](const AcDbMText& text) {
        acedRetReal(std::max(0.0, text.ascent() - text.textHeight()));
        return kLispOk;
    });
}

int mtextDescent() {
    CallArguments arguments;
    return onText(arguments, AcDb::kForWrite, IfUnopened::nil, [](const AcDbMText& text) {
        acedRetReal(text.descent());
        return kLispOk;
    });
}

int mtextDirection() {
    CallArguments arguments;
    return onText(arguments, AcDb::kForWrite, IfUnopened::nil, [](const AcDbMText& text) {
        retAngle(text.direction());
        return kLispOk;
    });
}

int mtextSetDirection() {
    return onText<double>(nextReal, [](AcDbMText& text, double angle) {
        AcGeVector3d direction = AcGeVector3d::kXAxis;
        direction.rotateBy(angle, AcGeVector3d::kZAxis);
        text.setDirection(direction);
        acedRetT();
    });
}

int mtextSetNormal() {
    return onText<AcGePoint3d>(nextPoint3d, [](AcDbMText& text, const AcGePoint3d& normal) {
        text.setNormal(normal.asVector());
        acedRetT();
    });
}

int mtextSetMask() {
    CallArguments arguments;
    AcDbObjectId id;
    bool on = false;
    double factor = 0;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    // A missing flag is false; a list in its place is no flag.
    if (arguments.next != nullptr && !nextBool(arguments.next, on)) return kLispWrongType;
    if (!nextReal(arguments.next, factor)) return kLispWrongType;
    acedRetNil();
    const Opened<AcDbMText> text(id, AcDb::kForWrite);
    if (!text) return kLispOk;
    text->setBackgroundFill(on);
    text->setBackgroundScaleFactor(factor);
    text->setUseBackgroundColor(true);
    acedRetT();
    return kLispOk;
}

int mtextInsert() {
    CallArguments arguments;
    std::wstring contents;
    AcGePoint3d location;
    if (!nextString(arguments.next, contents) || !nextPoint3d(arguments.next, location)) {
        return kLispWrongType;
    }
    double width = 0;
    if (!nextNumber(arguments.next, width)) skipNext(arguments.next);
    auto* const text = new AcDbMText;
    text->setContents(contents.c_str());
    text->setLocation(location);
    text->setWidth(width);
    // What is no style name goes on to the next test.
    std::wstring style;
    if (nextString(arguments.next, style)) {
        AcDbTextStyleTable* styles = nullptr;
        AcDbObjectId id;
        if (currentDatabase()->getTextStyleTable(styles, AcDb::kForRead) == Acad::eOk) {
            if (styles->getAt(style.c_str(), id) == Acad::eOk) text->setTextStyle(id);
            styles->close();
        }
    }
    int32_t attachment = 0;
    if (nextInt(arguments.next, attachment)) {
        text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(attachment));
    }
    acedRetNil();
    if (!addToModelSpace(text)) return kLispOk;
    retEntity(text->objectId());
    text->close();
    return kLispOk;
}

int mtextLastLineWidth() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextObjectId(arguments.next, id)) return kLispWrongType;
    acedRetNil();
    AcTransactionManager* const transactions =
        acDocManagerPtr()->curDocument()->transactionManager();
    AcTransaction* const transaction = transactions->startTransaction();
    AcDbObject* object = nullptr;
    if (transaction->getObject(object, id, AcDb::kForWrite, false) == Acad::eOk) {
        if (AcDbMText* const text = AcDbMText::cast(object)) acedRetReal(lastLineWidth(*text));
    }
    transactions->abortTransaction();
    return kLispOk;
}

}  // namespace sg
