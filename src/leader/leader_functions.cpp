#include <array>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "leader/lisp_functions.h"
#include "leader/plain_form.h"
#include "leader/qn_leader.h"
#include "platform/db/database.h"
#include "platform/db/leader.h"
#include "platform/db/line.h"

namespace sg {
namespace {

using LeaderPoints = std::array<AcGePoint3d, 3>;  // start, middle, end

// A list of exactly three points.
bool nextLeaderPoints(const resbuf*& position, LeaderPoints& points) {
    if (!nextListBegin(position)) return false;
    for (AcGePoint3d& point : points) {
        if (!nextPoint3d(position, point)) return false;
    }
    return nextListEnd(position);
}

double atDrawingScale(double plotted) {
    return plotted * currentDatabase()->dimscale();
}

// Opens the leader that the first argument names before the other arguments are read. `change`
// reads those; false of it is a wrong argument.
template <class Change>
int changeLeader(const Change& change) {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextNamedObject(arguments.next, id)) return kLispWrongType;
    const Opened<QNLeader> leader(id, AcDb::kForWrite);
    if (!leader) return kLispOk;
    if (!change(*leader, arguments.next)) return kLispWrongType;
    acedRetT();
    return kLispOk;
}

// Gives a new entity the leader's layer and linetype, and adds it. Its id; null when it could not
// be added.
AcDbObjectId addLikeLeader(const QNLeader& leader, AcDbEntity* entity) {
    entity->setLayer(leader.layerId(), true, false);
    entity->setLinetype(leader.linetypeId(), true);
    if (!addToModelSpace(entity)) return {};
    const AcDbObjectId id = entity->objectId();
    entity->close();
    return id;
}

// Adds an entity to model space and makes its name the call's result.
void addAndReturn(AcDbEntity* entity) {
    if (!addToModelSpace(entity)) return;
    retEntity(entity->objectId());
    entity->close();
}

}  // namespace

int leaderInsert() {
    CallArguments arguments;
    LeaderPoints points;
    if (!nextLeaderPoints(arguments.next, points)) return kLispWrongType;
    std::wstring name;
    AcDbObjectId layer;
    if (!nextString(arguments.next, name)) return kLispWrongType;
    if (!getLayerId(name, layer)) return kLispOk;
    AcDbObjectId block;
    if (!nextString(arguments.next, name)) return kLispWrongType;
    if (!findOrLoadBlock(name, block)) return kLispOk;
    double plotted = 0;
    if (!nextNumber(arguments.next, plotted)) return kLispWrongType;
    addAndReturn(
        new QNLeader(points[0], points[1], points[2], atDrawingScale(plotted), block, layer));
    return kLispOk;
}

int leaderSetPoints() {
    return changeLeader([](QNLeader& leader, const resbuf*& position) {
        LeaderPoints points;
        if (!nextLeaderPoints(position, points)) return false;
        leader.setPoints(points[0], points[1], points[2]);
        return true;
    });
}

int leaderSetBlock() {
    return changeLeader([](QNLeader& leader, const resbuf*& position) {
        std::wstring name;
        if (!nextString(position, name)) return false;
        leader.setBlock(name);
        return true;
    });
}

int leaderSetOffset() {
    return changeLeader([](QNLeader& leader, const resbuf*& position) {
        double plotted = 0;
        if (!nextNumber(position, plotted)) return false;
        leader.setOffset(atDrawingScale(plotted));
        return true;
    });
}

int leaderExplode() {
    CallArguments arguments;
    AcDbObjectId id;
    if (!nextNamedObject(arguments.next, id)) return kLispWrongType;
    const Opened<QNLeader> leader(id, AcDb::kForRead);
    if (!leader) return kLispOk;
    AcGePoint3d start, middle, end;
    leader->getPoints(start, middle, end);
    const AcGePoint3d stop = leader->shortenedEndPoint();
    const AcDbObjectId first = addLikeLeader(*leader, new AcDbLine(start, middle));
    const AcDbObjectId second = addLikeLeader(*leader, new AcDbLine(middle, stop));
    const AcDbObjectId symbol = addLikeLeader(*leader, newLeaderSymbol(*leader));
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    beginResultList(head, tail);
    for (const AcDbObjectId made : {symbol, second, first}) {
        appendPair(tail, L"obj", made);
    }
    finishResultList(head, tail);
    return kLispOk;
}

int hostLeaderCreate() {
    acedRetNil();
    CallArguments arguments;
    auto* const leader = new AcDbLeader;
    for (AcGePoint3d point; nextPoint3d(arguments.next, point);) {
        leader->appendVertex(point);
    }
    leader->setDatabaseDefaults(currentDatabase());
    addAndReturn(leader);
    return kLispOk;
}

}  // namespace sg
