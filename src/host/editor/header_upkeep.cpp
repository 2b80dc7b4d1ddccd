#include "host/editor/header_upkeep.h"

#include <array>
#include <utility>

#include "host/model/core/block_extents.h"
#include "host/model/core/database_state.h"
#include "host/model/tables/header_variables.h"
#include "host/system/date_time.h"
#include "platform/db/database.h"

namespace sg {
namespace {

using model::HeaderVariables;
using Clock = std::chrono::system_clock;

// Changes a header behind undo's back.
template <class Change>
void changeHeader(AcDbDatabase& database, const Change& change) {
    model::DatabaseState& state = model::DatabaseState::of(database);
    HeaderVariables header = state.header();
    change(header);
    state.restoreHeader(header);
}

void setTimes(HeaderVariables& header, const wchar_t* local, const wchar_t* universal) {
    const Clock::time_point now = Clock::now();
    header.set(local, julianDate(localTime(now)));
    header.set(universal, julianDate(universalTime(now)));
}

// Nothing reaches from as far as it can to as far as it can the other way.
std::pair<AcGePoint3d, AcGePoint3d> cornersOf(AcDbObjectId block) {
    constexpr double kFar = 1e20;
    const AcDbExtents extents = model::extentsOfBlock(block);
    if (extents.isEmpty()) return {{kFar, kFar, kFar}, {-kFar, -kFar, -kFar}};
    return {extents.minPoint(), extents.maxPoint()};
}

SystemVariableValue shown(const AcGePoint3d& point) {
    return std::array<double, 3>{point.x, point.y, point.z};
}

}  // namespace

HeaderUpkeep::HeaderUpkeep(AcDbDatabase& database)
    : database_(database), opened_(std::chrono::steady_clock::now()) {
    if (model::DatabaseState::of(database).header().get<double>(L"TDCREATE") != 0) return;
    changeHeader(database, [](HeaderVariables& header) {
        setTimes(header, L"TDCREATE", L"TDUCREATE");
        setTimes(header, L"TDUPDATE", L"TDUUPDATE");
    });
}

double HeaderUpkeep::inDrawing() const {
    using Days = std::chrono::duration<double, std::ratio<86400>>;
    const double before = model::DatabaseState::of(database_).header().get<double>(L"TDINDWG");
    return before + Days(std::chrono::steady_clock::now() - opened_).count();
}

double HeaderUpkeep::userTimer() const {
    const HeaderVariables& header = model::DatabaseState::of(database_).header();
    const double before = header.get<double>(L"TDUSRTIMER");
    if (header.get<int32_t>(L"USRTIMER") == 0) return before;
    return before + inDrawing() - header.get<double>(L"TDINDWG");
}

void HeaderUpkeep::join(SystemVariables& variables) {
    variables.setProvider(L"TDINDWG", [this] { return SystemVariableValue(inDrawing()); });
    variables.setProvider(L"TDUSRTIMER", [this] { return SystemVariableValue(userTimer()); });
    const AcDbObjectId model = model::DatabaseState::of(database_).roots.modelSpace;
    variables.setProvider(L"EXTMIN", [model] { return shown(cornersOf(model).first); });
    variables.setProvider(L"EXTMAX", [model] { return shown(cornersOf(model).second); });
}

void HeaderUpkeep::stamp() {
    const model::DatabaseRoots& roots = model::DatabaseState::of(database_).roots;
    const auto model = cornersOf(roots.modelSpace);
    const auto sheet = cornersOf(roots.paperSpace);
    const double timer = userTimer();
    const double open = inDrawing();
    changeHeader(database_, [&](HeaderVariables& header) {
        setTimes(header, L"TDUPDATE", L"TDUUPDATE");
        header.set(L"TDINDWG", open);
        header.set(L"TDUSRTIMER", timer);
        header.set(L"EXTMIN", model.first);
        header.set(L"EXTMAX", model.second);
        header.set(L"PEXTMIN", sheet.first);
        header.set(L"PEXTMAX", sheet.second);
    });
    opened_ = std::chrono::steady_clock::now();
}

}  // namespace sg
