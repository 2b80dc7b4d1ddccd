#include "support/dialogs/option_rows.h"

namespace sg {
namespace {

using Kind = OptionRow::Kind;

constexpr OptionRow group(const wchar_t* text) {
    return {Kind::group, text, L"", L""};
}

constexpr OptionRow updateAlert(const wchar_t* section) {
    return {Kind::yesNo, L"Alert me when updates are available", section, L"bUpdateAlert"};
}

// Photometrics has no section of its own.
constexpr OptionRow kRecalculate = {Kind::yesNo, L"Recalculate illuminance levels after query",
                                    L"Electrical", L"bRecalculatePhotoAfterQuery"};

void addShared(std::vector<OptionRow>& rows, bool isVantor) {
    rows.push_back(group(L"User Support Information"));
    rows.push_back({Kind::text, L"Name", L"Shared", L"Name"});
    rows.push_back({Kind::text, L"Email", L"Shared", L"Email"});
    rows.push_back({Kind::text, L"Phone", L"Shared", L"Phone"});
    rows.push_back({Kind::yesNo,
                    L"Save support emails to the desktop (set to \"Yes\" if sending fails or "
                    L"crashes)",
                    L"Shared", L"bSendToDesktop2"});
    rows.push_back(group(L"Drawing Options"));
    rows.push_back(
        {Kind::yesNo, L"Zoom to schedule after insertion", L"Shared", L"bZoomToSchedule"});
    if (isVantor) return;
    rows.push_back({Kind::yesNo, L"Automatically open drawings that need to be updated", L"Shared",
                    L"bAutoUpdateDrawings"});
}

void addElectrical(std::vector<OptionRow>& rows, bool isVantor) {
    rows.push_back(group(L"Electrical"));
    rows.push_back(updateAlert(L"Electrical"));
    if (isVantor) return;
    rows.push_back({Kind::yesNo, L"Warn if distribution equipment is overloaded", L"Electrical",
                    L"bAlertOverloadPanel"});
    rows.push_back(kRecalculate);
}

}  // namespace

std::vector<OptionRow> optionRows(const std::wstring& discipline, const std::wstring& edition) {
    const bool isVantor = edition == L"Vantor";
    std::vector<OptionRow> rows;
    addShared(rows, isVantor);
    if (discipline == L"ELEC") {
        addElectrical(rows, isVantor);
    } else if (discipline == L"PHOTO") {
        rows.insert(rows.end(), {group(L"Photometrics"), updateAlert(L"Electrical"), kRecalculate});
    } else if (discipline == L"HVAC") {
        rows.insert(rows.end(), {group(L"HVAC"), updateAlert(L"HVAC")});
    } else if (discipline == L"PLUMB") {
        rows.insert(rows.end(), {group(L"Plumbing"), updateAlert(L"Plumbing")});
    }
    return rows;
}

}  // namespace sg
