#include "host/editor/commands/command.h"

#include <algorithm>
#include <stdexcept>

#include "base/encoding.h"
#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/selection/select_entities.h"
#include "host/editor/system_variables.h"
#include "host/lisp/text/units.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"
#include "platform/db/id_mapping.h"

namespace sg {
namespace {

// Of an option of several words the one with the capitals: "chord Length", "Second pt".
std::wstring_view keywordIn(std::wstring_view option) {
    for (std::wstring_view rest = option; !rest.empty();) {
        const size_t end = std::min(rest.find(L' '), rest.size());
        const std::wstring_view word = rest.substr(0, end);
        if (lowerCased(word) != word) return word;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return option;
}

// The options in the brackets of a prompt, as keywords: "[Close/Undo]" makes "Close Undo".
std::wstring optionsOf(std::wstring_view prompt) {
    const size_t begin = prompt.rfind(L'[');
    const size_t end = prompt.rfind(L']');
    if (begin == std::wstring_view::npos || end == std::wstring_view::npos || end < begin) {
        return {};
    }
    std::wstring keywords;
    for (std::wstring_view rest = prompt.substr(begin + 1, end - begin - 1); !rest.empty();) {
        const size_t slash = std::min(rest.find(L'/'), rest.size());
        keywords += std::wstring(keywordIn(rest.substr(0, slash))) + L" ";
        rest.remove_prefix(std::min(slash + 1, rest.size()));
    }
    return keywords;
}

UnitSettings unitsOf(const Command& command) {
    return {command.whole(L"DIMZIN"), command.whole(L"UNITMODE"), command.number(L"ANGBASE"),
            command.whole(L"ANGDIR")};
}

}  // namespace

Command::Command(const Setting& setting) : setting_(setting), prompter_(setting_.place, allowed_) {}

// ---- Asking -------------------------------------------------------------------------------------

void Command::allow(const Ask& ask) {
    std::wstring keywords = optionsOf(ask.prompt);
    if (ask.more != nullptr) keywords += L" " + std::wstring(ask.more);
    allowed_ = {ask.bits, Keywords(keywords)};
}

Command::Reply Command::replyOf(PromptResult result) {
    switch (result) {
        case PromptResult::value:
            return Reply::value;
        case PromptResult::null:
            return Reply::enter;
        case PromptResult::keyword:
            return Reply::keyword;
        default:
            throw Cancelled();
    }
}

Command::Reply Command::point(const Ask& ask, AcGePoint3d& result) {
    allow(ask);
    return replyOf(prompter_.point(ask.prompt, ask.base, result));
}

Command::Reply Command::corner(const Ask& ask, AcGePoint3d& result) {
    allow(ask);
    return replyOf(prompter_.corner(ask.prompt, ask.base.value_or(AcGePoint3d()), result));
}

Command::Reply Command::distance(const Ask& ask, double& result) {
    allow(ask);
    return replyOf(prompter_.distance(ask.prompt, ask.base, result));
}

Command::Reply Command::angle(const Ask& ask, double& result) {
    allow(ask);
    return replyOf(prompter_.angle(ask.prompt, ask.base, false, result));
}

Command::Reply Command::direction(const Ask& ask, double& result) {
    allow(ask);
    return replyOf(prompter_.angle(ask.prompt, ask.base, true, result));
}

Command::Reply Command::integer(const Ask& ask, int32_t& result) {
    allow(ask);
    return replyOf(prompter_.integer(ask.prompt, result));
}

Command::Reply Command::real(const Ask& ask, double& result) {
    allow(ask);
    return replyOf(prompter_.real(ask.prompt, result));
}

std::wstring Command::text(const std::wstring& prompt) {
    std::wstring answer;
    replyOf(prompter_.string(prompt, true, answer));
    return answer;
}

std::wstring Command::word(const std::wstring& prompt) {
    std::wstring answer;
    replyOf(prompter_.string(prompt, false, answer));
    return std::wstring(trimmed(answer));
}

std::wstring Command::option(const std::wstring& prompt, const wchar_t* more) {
    allow({prompt, std::nullopt, 0, more});
    return replyOf(prompter_.choice(prompt)) == Reply::enter ? L"" : keyword();
}

bool Command::yes(const std::wstring& prompt, bool byDefault) {
    const std::wstring answer = option(prompt, L"Yes No");
    return answer.empty() ? byDefault : answer == L"Yes";
}

AcGePoint3d Command::needPoint(const Ask& ask) {
    Ask strict = ask;
    strict.bits |= Prompter::Allowed::noNull;
    AcGePoint3d result;
    point(strict, result);
    return result;
}

SelectionSet Command::select(const wchar_t* prompt, bool single) {
    EntitySelector::Request request;
    request.addPrompt = prompt;
    request.mode.single = single;
    auto filter = SelectionFilter::parse(nullptr);
    SelectionSet found;
    const SelectionOutcome outcome =
        EntitySelector(setting_.place, prompter_, *filter).select(request, found);
    if (outcome == SelectionOutcome::cancelled) throw Cancelled();
    size_t locked = 0;
    for (const AcDbObjectId id : found.ids()) {
        if (DrawingSelection::isOnLockedLayer(id)) locked += found.remove(id) ? 1 : 0;
    }
    if (locked > 0) {
        print(std::to_wstring(locked) +
              (locked == 1 ? L" was on a locked layer." : L" were on a locked layer."));
    }
    return found;
}

AcDbObjectId Command::pick(const std::wstring& prompt) {
    AcDbObjectId id;
    AcGePoint3d at;
    const PromptResult result = prompter_.entity(prompt, id, at);
    if (result == PromptResult::cancelled) throw Cancelled();
    return result == PromptResult::value ? id : AcDbObjectId();
}

// ---- Telling ------------------------------------------------------------------------------------

void Command::print(const std::wstring& line) {
    Output& output = setting_.place.output;
    if (!output.atLineStart()) output.print(L"\n");
    output.print(line + L"\n");
}

std::wstring Command::lengthText(double length) const {
    return formatDistance(length, whole(L"LUNITS"), whole(L"LUPREC"), unitsOf(*this));
}

std::wstring Command::angleText(double angle) const {
    return formatAngle(angle, whole(L"AUNITS"), whole(L"AUPREC"), unitsOf(*this));
}

double Command::number(const wchar_t* variable) const {
    const auto value = setting_.place.variables.get(variable);
    const auto* const real = value ? std::get_if<double>(&*value) : nullptr;
    return real != nullptr ? *real : whole(variable);
}

int32_t Command::whole(const wchar_t* variable) const {
    const auto value = setting_.place.variables.get(variable);
    if (!value) return 0;
    if (const auto* const small = std::get_if<int16_t>(&*value)) return *small;
    const auto* const large = std::get_if<int32_t>(&*value);
    return large == nullptr ? 0 : *large;
}

std::wstring Command::textOf(const wchar_t* variable) const {
    const auto value = setting_.place.variables.get(variable);
    const auto* const text = value ? std::get_if<std::wstring>(&*value) : nullptr;
    return text == nullptr ? std::wstring() : *text;
}

// ---- Drawing ------------------------------------------------------------------------------------

AcGeMatrix3d Command::userToWorld() const {
    return model::userToWorld(setting_.place.database);
}

AcDbObjectId Command::add(std::unique_ptr<AcDbEntity> entity) {
    entity->setDatabaseDefaults(&database());
    return append(std::move(entity));
}

AcDbObjectId Command::append(std::unique_ptr<AcDbEntity> entity) {
    AcDbBlockTableRecord* space = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(space, database().currentSpaceId(), AcDb::kForWrite) != Acad::eOk) return id;
    if (space->appendAcDbEntity(id, entity.get()) == Acad::eOk) entity.release()->close();
    space->close();
    return id;
}

std::vector<AcDbObjectId> Command::copy(const std::vector<AcDbObjectId>& ids) {
    AcDbObjectIdArray originals;
    for (const AcDbObjectId id : ids)
        originals.append(id);
    AcDbIdMapping mapping;
    std::vector<AcDbObjectId> copies;
    if (originals.isEmpty() ||
        database().deepCloneObjects(originals, database().currentSpaceId(), mapping) != Acad::eOk) {
        return copies;
    }
    for (const AcDbObjectId id : ids) {
        const AcDbIdMapping::Pair* const pair = mapping.find(id);
        if (pair != nullptr && pair->isCloned) copies.push_back(pair->value);
    }
    return copies;
}

void Command::transform(const std::vector<AcDbObjectId>& ids, const AcGeMatrix3d& matrix) {
    for (const AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
        entity->transformBy(matrix);
        entity->close();
    }
}

void Command::erase(const std::vector<AcDbObjectId>& ids) {
    for (const AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
        entity->erase();
        entity->close();
    }
}

// ---- Files --------------------------------------------------------------------------------------

void Command::openFile(const std::wstring& path) {
    setting_.outside([&] { setting_.files.open(path); });
}

void Command::saveFile(const std::wstring& path, const std::wstring& release) {
    setting_.outside([&] { setting_.files.save(document(), path, release); });
}

}  // namespace sg
