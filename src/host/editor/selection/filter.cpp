#include "host/editor/selection/filter.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/core/list_filers.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/references.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"

namespace sg {
namespace {

constexpr int kOperator = -4;
constexpr int kExtendedData = -3;
constexpr int kApplication = 1001;

enum class Relation { equal, unequal, less, lessOrEqual, greater, greaterOrEqual, any, bits, all };

std::optional<Relation> relationOf(std::wstring_view text) {
    struct Row {
        const wchar_t* text;
        Relation relation;
    };
    static constexpr Row kRows[] = {
        {L"=", Relation::equal},    {L"!=", Relation::unequal},
        {L"/=", Relation::unequal}, {L"<>", Relation::unequal},
        {L"<", Relation::less},     {L"<=", Relation::lessOrEqual},
        {L">", Relation::greater},  {L">=", Relation::greaterOrEqual},
        {L"*", Relation::any},      {L"&", Relation::bits},
        {L"&=", Relation::all},
    };
    for (const Row& row : kRows) {
        if (text == row.text) return row.relation;
    }
    return std::nullopt;
}

// One relation, or one for each coordinate, separated by commas. Empty for anything else.
std::vector<Relation> relationsOf(std::wstring_view text) {
    std::vector<Relation> relations;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(L',', at), text.size());
        const auto relation = relationOf(trimmed(text.substr(at, end - at)));
        if (!relation) return {};
        relations.push_back(*relation);
        at = end + 1;
    }
    return relations;
}

bool holds(Relation relation, double own, double wanted) {
    const double slack = 1e-9 * std::max({1.0, std::abs(own), std::abs(wanted)});
    const bool same = std::abs(own - wanted) <= slack;
    switch (relation) {
        case Relation::equal:
            return same;
        case Relation::unequal:
            return !same;
        case Relation::less:
            return own < wanted && !same;
        case Relation::lessOrEqual:
            return own < wanted || same;
        case Relation::greater:
            return own > wanted && !same;
        case Relation::greaterOrEqual:
            return own > wanted || same;
        case Relation::any:
            return true;
        case Relation::bits:
            return (std::llround(own) & std::llround(wanted)) != 0;
        case Relation::all:
            return (std::llround(own) & std::llround(wanted)) == std::llround(wanted);
    }
    return false;
}

// Texts in which case does not count.
bool isName(int code) {
    switch (code) {
        case 0:
        case 2:
        case 5:
        case 6:
        case 7:
        case 8:
        case 100:
        case 105:
        case 410:
            return true;
        default:
            return false;
    }
}

// What an entity has that writes no such group.
const wchar_t* defaultText(int code) {
    return code == 6 ? L"BYLAYER" : nullptr;
}
std::optional<double> defaultNumber(int code) {
    switch (code) {
        case 62:
            return 256;
        case 48:
            return 1;
        case 370:
            return -1;
        case 39:
        case 60:
            return 0;
        default:
            return std::nullopt;
    }
}

}  // namespace

struct SelectionFilter::Condition {
    enum class Kind { test, application, all, any, one, none };

    Kind kind = Kind::test;
    int code = 0;
    int type = RTNONE;  // of the value: RTSTR, RTREAL, RT3DPOINT or RTENAME; numbers are RTREAL
    std::vector<Relation> relations;
    std::wstring text;  // a pattern; in upper case where case does not count
    double numbers[3] = {};
    AcDbObjectId name;
    std::vector<Condition> parts;
    std::map<AcDbObjectId, bool> known;  // of layers, blocks and layouts: whether the name matches

    bool matches(std::wstring_view own) const {
        const bool found = isName(code) || kind == Kind::application
                               ? wildcardMatch(upperCased(own), text)
                               : wildcardMatch(own, text);
        if (relations.empty()) return found;
        return relations.front() == Relation::any ||
               found == (relations.front() != Relation::unequal);
    }
    bool matches(const resbuf& group) const;
};

namespace {

using Condition = SelectionFilter::Condition;
using Kind = Condition::Kind;

Relation relationAt(const std::vector<Relation>& relations, size_t index) {
    if (relations.empty()) return Relation::equal;
    return relations[std::min(index, relations.size() - 1)];
}

// What one entity has, written only when a condition asks for it.
class Subject {
  public:
    explicit Subject(const AcDbEntity& entity) : entity_(entity) {}
    ~Subject() { acutRelRb(groups_); }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    const AcDbEntity& entity() const { return entity_; }

    const resbuf* groups() {
        if (!isWritten_) {
            isWritten_ = true;
            const model::Unguarded guard(entity_);
            model::ListWriter writer(entity_.database());
            if (entity_.dxfOut(&writer) == Acad::eOk) groups_ = writer.take();
        }
        return groups_;
    }

  private:
    const AcDbEntity& entity_;
    bool isWritten_ = false;
    resbuf* groups_ = nullptr;
};

std::wstring layoutNameOf(AcDbObjectId block) {
    const auto* const record = model::peek<AcDbBlockTableRecord>(block);
    const auto* const layout =
        record == nullptr ? nullptr : model::peek<AcDbLayout>(record->getLayoutId());
    if (layout == nullptr) return {};
    const model::Unguarded guard(*layout);
    return layout->getLayoutName();
}

// A name that many entities share is compared once.
template <class NameOf>
bool matchesName(Condition& condition, AcDbObjectId id, const NameOf& nameOf) {
    const auto [found, isNew] = condition.known.try_emplace(id, false);
    if (isNew) found->second = condition.matches(nameOf(id));
    return found->second;
}

bool hasApplication(const Condition& condition, const AcDbEntity& entity) {
    const model::Extras* const extras = model::ObjectAccess::extras(entity);
    if (extras == nullptr || extras->extendedData.empty()) return false;
    resbuf* const groups = extras->extendedData.toList(nullptr);
    bool found = false;
    for (const resbuf* group = groups; group != nullptr && !found; group = group->rbnext)
        found = group->restype == kApplication && condition.matches(group->resval.rstring);
    acutRelRb(groups);
    return found;
}

bool testGroups(const Condition& condition, Subject& subject) {
    bool isThere = false;
    for (const resbuf* group = subject.groups(); group != nullptr; group = group->rbnext) {
        if (group->restype != condition.code) continue;
        isThere = true;
        if (condition.matches(*group)) return true;
    }
    if (isThere) return false;
    if (condition.type == RTSTR) {
        const wchar_t* const text = defaultText(condition.code);
        return text != nullptr && condition.matches(text);
    }
    const auto number = defaultNumber(condition.code);
    return condition.type == RTREAL && number &&
           holds(relationAt(condition.relations, 0), *number, condition.numbers[0]);
}

bool test(Condition& condition, Subject& subject) {
    const AcDbEntity& entity = subject.entity();
    const AcDbDatabase* const database = entity.database();
    switch (condition.code) {
        case 0:
            return condition.matches(model::dxfNameOf(entity));
        case 8:
            return matchesName(condition, entity.layerId(), model::nameOf);
        case 67: {
            const bool paper = database != nullptr && entity.ownerId() != database->modelSpaceId();
            return holds(relationAt(condition.relations, 0), paper ? 1 : 0, condition.numbers[0]);
        }
        case 410:
            return matchesName(condition, entity.ownerId(), layoutNameOf);
        case 2:
            if (const auto* const reference = AcDbBlockReference::cast(&entity)) {
                return matchesName(condition, reference->blockTableRecord(), model::nameOf);
            }
            break;
        default:
            break;
    }
    return testGroups(condition, subject);
}

bool evaluate(Condition& condition, Subject& subject) {
    const auto holdsFor = [&](Condition& part) { return evaluate(part, subject); };
    auto& parts = condition.parts;
    switch (condition.kind) {
        case Kind::test:
            return test(condition, subject);
        case Kind::application:
            return hasApplication(condition, subject.entity());
        case Kind::all:
            return std::all_of(parts.begin(), parts.end(), holdsFor);
        case Kind::any:
            return std::any_of(parts.begin(), parts.end(), holdsFor);
        case Kind::one:
            return evaluate(parts[0], subject) != evaluate(parts[1], subject);
        case Kind::none:
            return !evaluate(parts[0], subject);
    }
    return false;
}

// ---- Reading ------------------------------------------------------------------------------------

class Parser {
  public:
    explicit Parser(const resbuf* groups) : next_(groups) {}

    // All conditions up to `end`, or up to the end of the list for an empty one.
    bool parseUntil(std::wstring_view end, std::vector<Condition>& conditions) {
        while (next_ != nullptr) {
            const resbuf& group = *next_;
            next_ = next_->rbnext;
            if (group.restype == kExtendedData) {
                if (!parseApplications(conditions)) return false;
            } else if (group.restype != kOperator) {
                Condition condition;
                if (!setValue(condition, group)) return false;
                conditions.push_back(std::move(condition));
            } else {
                if (group.resval.rstring == nullptr) return false;
                const std::wstring word = upperCased(trimmed(group.resval.rstring));
                if (word.size() > 1 && word.ends_with(L'>') && word != L"<>") {
                    return !end.empty() && word == end;
                }
                if (!parseOperator(word, conditions)) return false;
            }
        }
        return end.empty();
    }

  private:
    bool parseOperator(const std::wstring& word, std::vector<Condition>& conditions) {
        struct Row {
            const wchar_t* begin;
            const wchar_t* end;
            Kind kind;
            size_t least, most;
        };
        static constexpr Row kRows[] = {{L"<AND", L"AND>", Kind::all, 1, SIZE_MAX},
                                        {L"<OR", L"OR>", Kind::any, 1, SIZE_MAX},
                                        {L"<XOR", L"XOR>", Kind::one, 2, 2},
                                        {L"<NOT", L"NOT>", Kind::none, 1, 1}};
        constexpr int kDeepest = 200;
        for (const Row& row : kRows) {
            if (word != row.begin) continue;
            Condition condition;
            condition.kind = row.kind;
            if (++depth_ > kDeepest || !parseUntil(row.end, condition.parts)) return false;
            --depth_;
            const size_t count = condition.parts.size();
            if (count < row.least || count > row.most) return false;
            conditions.push_back(std::move(condition));
            return true;
        }
        Condition condition;
        condition.relations = relationsOf(word);
        if (condition.relations.empty() || next_ == nullptr || next_->restype < 0) return false;
        if (!setValue(condition, *next_)) return false;
        next_ = next_->rbnext;
        if (condition.type != RT3DPOINT && condition.relations.size() > 1) return false;
        conditions.push_back(std::move(condition));
        return true;
    }

    bool setValue(Condition& condition, const resbuf& group) {
        condition.code = group.restype;
        if (condition.code >= RTNONE) return false;
        condition.type = acdbGroupCodeToType(condition.code);
        switch (condition.type) {
            case RTSTR: {
                const std::wstring text =
                    group.resval.rstring == nullptr ? L"" : group.resval.rstring;
                condition.text = isName(condition.code) ? upperCased(text) : text;
                return true;
            }
            case RTREAL:
                condition.numbers[0] = group.resval.rreal;
                return true;
            case RTSHORT:
                condition.numbers[0] = group.resval.rint;
                condition.type = RTREAL;
                return true;
            case RTLONG:
                condition.numbers[0] = group.resval.rlong;
                condition.type = RTREAL;
                return true;
            case RT3DPOINT:
                std::copy_n(group.resval.rpoint, 3, condition.numbers);
                return true;
            case RTENAME:
                acdbGetObjectId(condition.name, group.resval.rlname);
                return true;
            default:
                return false;
        }
    }

    // The names behind a group -3; what an application is to hold is not looked at.
    bool parseApplications(std::vector<Condition>& conditions) {
        const size_t before = conditions.size();
        for (; next_ != nullptr && next_->restype >= 1000 && next_->restype < RTNONE;
             next_ = next_->rbnext) {
            if (next_->restype != kApplication || next_->resval.rstring == nullptr) continue;
            Condition condition;
            condition.kind = Kind::application;
            condition.text = upperCased(next_->resval.rstring);
            conditions.push_back(std::move(condition));
        }
        return conditions.size() > before;
    }

    const resbuf* next_;
    int depth_ = 0;
};

}  // namespace

bool Condition::matches(const resbuf& group) const {
    switch (acdbGroupCodeToType(group.restype)) {
        case RTSTR:
            return matches(std::wstring_view(group.resval.rstring));
        case RTREAL:
            return holds(relationAt(relations, 0), group.resval.rreal, numbers[0]);
        case RTSHORT:
            return holds(relationAt(relations, 0), group.resval.rint, numbers[0]);
        case RTLONG:
            return holds(relationAt(relations, 0), group.resval.rlong, numbers[0]);
        case RT3DPOINT:
            for (size_t i = 0; i < 3; ++i) {
                if (!holds(relationAt(relations, i), group.resval.rpoint[i], numbers[i])) {
                    return false;
                }
            }
            return true;
        case RTENAME: {
            AcDbObjectId own;
            acdbGetObjectId(own, group.resval.rlname);
            return (own == name) == (relationAt(relations, 0) != Relation::unequal);
        }
        default:
            return false;
    }
}

SelectionFilter::SelectionFilter() = default;
SelectionFilter::~SelectionFilter() = default;
SelectionFilter::SelectionFilter(SelectionFilter&&) noexcept = default;
SelectionFilter& SelectionFilter::operator=(SelectionFilter&&) noexcept = default;

std::optional<SelectionFilter> SelectionFilter::parse(const resbuf* groups) {
    SelectionFilter filter;
    if (!Parser(groups).parseUntil(L"", filter.conditions_)) return std::nullopt;
    return filter;
}

bool SelectionFilter::isEmpty() const {
    return conditions_.empty();
}

bool SelectionFilter::takes(const AcDbEntity& entity) {
    Subject subject(entity);
    return std::all_of(conditions_.begin(), conditions_.end(),
                       [&](Condition& condition) { return evaluate(condition, subject); });
}

}  // namespace sg
