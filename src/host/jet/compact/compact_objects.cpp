#include "host/jet/compact/compact_objects.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "host/jet/compact/compact_table.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/expression/expression_dates.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::compaction {
namespace {

constexpr std::wstring_view objectsTable = L"MSysObjects";
constexpr std::wstring_view accessTable = L"MSysACEs";

constexpr int32_t rootContainer = 0x0F000000;
// Numbers up to here may be pages.
constexpr int32_t lastPage = 0xffffff;

const wchar_t* usualContainer(ObjectType type) {
    switch (type) {
        case ObjectType::Database:
            return L"Databases";
        case ObjectType::Relation:
            return L"Relationships";
        default:
            return L"Tables";
    }
}

bool isNamedOrRelated(ObjectType type) {
    return type == ObjectType::Table || type == ObjectType::LinkedTable ||
           type == ObjectType::LinkedOdbcTable || type == ObjectType::Query ||
           type == ObjectType::Relation || type == ObjectType::Database;
}

}  // namespace

ObjectCopier::ObjectCopier(const Source& source, Database& into)
    : source_(source), into_(into), builtIn_(into.objects()) {
    const PageRef page = into.store().read(0);
    databasePage_.assign(page->begin(), page->end());
    maskDatabasePage(databasePage_, into.store().format());
    for (const CatalogObject& object : builtIn_) {
        used_.insert(object.id);
        if (object.type == ObjectType::Database) {
            owner_ = schema::SystemTable(into, objectsTable).value(object.row, L"Owner");
        }
    }
    for (const CatalogObject& object : source.objects()) {
        if (!object.isTable()) used_.insert(object.id);
    }
    for (const CatalogObject& object : source.objects()) {
        if (const CatalogObject* own = builtInLike(object)) {
            ids_.try_emplace(object.id, own->id);
        } else if (!object.isTable()) {
            numbered_[object.row] = numberFor(object);
        }
    }
}

const CatalogObject* ObjectCopier::builtInLike(const CatalogObject& object) const {
    const auto found = std::find_if(builtIn_.begin(), builtIn_.end(), [&](const auto& own) {
        return own.type == object.type && equalIgnoringCase(own.name, object.name);
    });
    return found == builtIn_.end() ? nullptr : &*found;
}

std::optional<int32_t> ObjectCopier::newId(int32_t id) const {
    const auto found = ids_.find(id);
    return found == ids_.end() ? std::nullopt : std::optional(found->second);
}

int32_t ObjectCopier::unusedId() {
    int32_t id = std::numeric_limits<int32_t>::min();
    while (used_.contains(id))
        ++id;
    used_.insert(id);
    return id;
}

// Its own number, unless that could be a table's or somebody has it.
int32_t ObjectCopier::numberFor(const CatalogObject& object) {
    const bool mayBePage = object.id >= 0 && object.id <= lastPage;
    const bool isTaken = ids_.contains(object.id) ||
                         std::any_of(builtIn_.begin(), builtIn_.end(),
                                     [&](const auto& own) { return own.id == object.id; });
    const int32_t id = mayBePage || isTaken ? unusedId() : object.id;
    ids_.try_emplace(object.id, id);
    return id;
}

int32_t ObjectCopier::parentOf(const CatalogObject& object) const {
    if (const auto parent = newId(object.parent)) return *parent;
    if (object.parent == rootContainer || !isNamedOrRelated(object.type)) return object.parent;
    return into_.object(usualContainer(object.type), ObjectType::Container)->id;
}

// Accounts are masked differently in every file.
Value ObjectCopier::accountOf(Value held) const {
    Bytes* account = std::get_if<Bytes>(&held);
    if (account == nullptr) return owner_;
    source_.unmaskAccount(*account);
    maskAccount(*account, ByteView(databasePage_.data(), databasePage_.size()),
                into_.store().format());
    return held;
}

Value ObjectCopier::propertiesOf(const Value& held, const CatalogObject& object,
                                 const std::vector<std::wstring>& dropped) {
    const Bytes* bytes = std::get_if<Bytes>(&held);
    if (bytes == nullptr) return {};
    Value made;
    source_.run().guard(L"the properties of " + object.name, [&] {
        Properties properties =
            Properties::parse(ByteView(bytes->data(), bytes->size()), source_.format());
        for (const std::wstring& column : dropped)
            properties.removeOwner(column);
        made = schema::propertiesField(properties, into_.store().format()).second;
    });
    return made;
}

// The columns that both catalogs have. What the source does not tell is as of an object made now.
std::vector<schema::Field> ObjectCopier::fieldsOf(const CatalogObject& object,
                                                  const std::vector<std::wstring>& dropped) {
    std::vector<schema::Field> fields;
    const Table catalog = into_.table(objectsTable);
    SourceRows row(source_, source_.catalog());
    row.seek(object.row);
    for (const Column& column : catalog.definition().columns) {
        Value value;
        if (column.name == L"Owner") {
            value = accountOf(row.value(column.name));
        } else if (column.name == L"LvProp") {
            value = propertiesOf(row.value(column.name), object, dropped);
        } else if (column.name != L"Id" && column.name != L"ParentId") {
            value = row.value(column.name);
            source_.run().guard(object.name + L": " + column.name,
                                [&] { convertTo(column, value); });
        }
        fields.emplace_back(column.name, std::move(value));
    }
    const auto set = [&](std::wstring_view name, Value value) {
        std::find_if(fields.begin(), fields.end(), [&](const auto& field) {
            return field.first == name;
        })->second = std::move(value);
    };
    set(L"ParentId", parentOf(object));
    set(L"Name", object.name);
    set(L"Type", static_cast<int16_t>(object.type));
    set(L"Flags", static_cast<int32_t>(object.flags));
    return fields;
}

void ObjectCopier::insert(const std::vector<schema::Field>& fields, int32_t id) {
    TableWriter& writer = into_.writerAt(pages::catalog);
    std::vector<Value> row(writer.definition().columns.size());
    for (const auto& [name, value] : fields)
        row[*writer.definition().columnByName(name)] = value;
    row[*writer.definition().columnByName(L"Id")] = id;
    writer.insertCopy(row);
    added_.push_back(id);
}

void ObjectCopier::addTable(const CatalogObject& object, uint32_t page,
                            const std::vector<std::wstring>& dropped) {
    insert(fieldsOf(object, dropped), static_cast<int32_t>(page));
    ids_.try_emplace(object.id, static_cast<int32_t>(page));
}

void ObjectCopier::add(const CatalogObject& object) {
    insert(fieldsOf(object, {}), numbered_.at(object.row));
}

void ObjectCopier::addLost(const std::wstring& name, ObjectType type, uint32_t page) {
    const Date now = detail::now();
    insert({{L"ParentId", into_.object(usualContainer(type), ObjectType::Container)->id},
            {L"Name", name},
            {L"Type", static_cast<int16_t>(type)},
            {L"Flags", int32_t(0)},
            {L"DateCreate", now},
            {L"DateUpdate", now},
            {L"Owner", owner_}},
           page != 0 ? static_cast<int32_t>(page) : unusedId());
    lost_.push_back(added_.back());
}

void ObjectCopier::update(const CatalogObject& object) {
    std::vector<schema::Field> fields = fieldsOf(object, {});
    std::erase_if(fields, [](const auto& field) {
        return field.first == L"Id" || field.first == L"ParentId" || field.first == L"Name" ||
               field.first == L"Type";
    });
    schema::SystemTable(into_, objectsTable).update(builtInLike(object)->row, fields);
}

// --- rights ---

// False when not all of them could be read.
bool ObjectCopier::readAccess(std::vector<Access>& list) const {
    const size_t losses = source_.run().report().losses.size();
    std::optional<Table> from;
    source_.run().guard({}, [&] { from = source_.systemTable(accessTable); });
    if (!from) return false;
    for (SourceRows rows(source_, *from); rows.next();) {
        const Value held = rows.value(L"ObjectId");
        const int32_t* id = std::get_if<int32_t>(&held);
        const auto known = id ? newId(*id) : std::nullopt;
        Value account = rows.value(L"SID");
        if (!known || !std::holds_alternative<Bytes>(account)) continue;
        list.push_back({*known, accountOf(std::move(account)), rows.value(L"ACM"),
                        rows.value(L"FInheritable")});
    }
    return losses == source_.run().report().losses.size();
}

// Programs have objects that nobody has a right to. Where the source cannot tell which, each gets
// the rights of a new one.
void ObjectCopier::copyAccess() {
    std::vector<Access> list;
    const bool isWhole = readAccess(list);
    std::set<int32_t> told;
    for (const Access& access : list)
        told.insert(access.object);
    schema::SystemTable table(into_, accessTable);
    const size_t object = table.column(L"ObjectId");
    table.erase(table.find(
        [&](const RowCursor& row) { return told.contains(schema::numberAt(row, object)); }));
    for (const Access& access : list) {
        source_.run().guard(accessTable, [&] {
            table.insert({{L"ObjectId", access.object},
                          {L"SID", access.account},
                          {L"ACM", access.rights},
                          {L"FInheritable", access.inherits}});
        });
    }
    for (const int32_t id : isWhole ? lost_ : added_) {
        if (!told.contains(id)) schema::inheritAccess(into_, id, containerOf(id));
    }
}

CatalogObject ObjectCopier::containerOf(int32_t id) const {
    const std::vector<CatalogObject>& objects = into_.objects();
    const auto withId = [&](int32_t wanted) {
        return std::find_if(objects.begin(), objects.end(),
                            [&](const CatalogObject& one) { return one.id == wanted; });
    };
    if (const auto object = withId(id); object != objects.end()) {
        const auto container = withId(object->parent);
        if (container != objects.end() && container->type == ObjectType::Container) {
            return *container;
        }
    }
    return *into_.object(schema::tablesContainer, ObjectType::Container);
}

}  // namespace sg::jet::compaction
