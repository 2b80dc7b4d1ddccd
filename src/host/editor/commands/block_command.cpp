#include <memory>
#include <vector>

#include "base/text.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/planes.h"
#include "host/editor/commands/programs.h"
#include "host/model/access/block_cycles.h"
#include "host/model/core/cloning.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/references.h"
#include "platform/db/block_reference.h"
#include "platform/db/id_mapping.h"

namespace sg::commands {
namespace {

// A new and empty block, or an old one made empty; null for a name that no block can have.
AcDbObjectId emptyBlockNamed(Command& c, const std::wstring& name, AcDbObjectId existing) {
    if (!existing.isNull()) {
        model::emptyBlock(existing);
        return existing;
    }
    AcDbBlockTable* table = nullptr;
    AcDbObjectId id;
    if (c.database().getBlockTable(table, AcDb::kForWrite) != Acad::eOk) return id;
    auto made = std::make_unique<AcDbBlockTableRecord>();
    if (made->setName(name.c_str()) == Acad::eOk && table->add(id, made.get()) == Acad::eOk) {
        made.release()->close();
    }
    table->close();
    return id;
}

std::vector<AcDbObjectId> cloneInto(AcDbDatabase& database, AcDbObjectId block,
                                    const std::vector<AcDbObjectId>& ids) {
    AcDbObjectIdArray originals;
    for (const AcDbObjectId id : ids)
        originals.append(id);
    AcDbIdMapping mapping;
    std::vector<AcDbObjectId> copies;
    if (originals.isEmpty()) return copies;
    database.deepCloneObjects(originals, block, mapping);
    for (const AcDbObjectId id : ids) {
        const AcDbIdMapping::Pair* const pair = mapping.find(id);
        if (pair != nullptr && pair->isCloned) copies.push_back(pair->value);
    }
    return copies;
}

std::wstring askName(Command& c) {
    for (;;) {
        const std::wstring name(trimmed(c.text(L"Enter block name or [?]: ")));
        if (name != L"?") return name;
        listRecords(c, c.database().blockTableId(), L"Defined blocks.");
    }
}

}  // namespace

void block(Command& c) {
    const std::wstring name = askName(c);
    if (name.empty()) return;
    const AcDbObjectId existing = model::recordNamed(&c.database(), model::NamedIn::blocks, name);
    if (!existing.isNull() &&
        !c.yes(L"Block \"" + name + L"\" already exists.  Redefine it? [Yes/No] <N>: ", false)) {
        return;
    }
    const AcGePoint3d base = c.needPoint({L"Specify insertion base point: "});
    const std::vector<AcDbObjectId> ids = c.select().ids();
    for (const AcDbObjectId id : ids) {
        const auto* const shown = model::peek<AcDbBlockReference>(id);
        if (!existing.isNull() && shown != nullptr &&
            model::showsBlock(shown->blockTableRecord(), existing)) {
            c.print(L"Block \"" + name + L"\" references itself.");
            return;
        }
    }
    const AcDbObjectId made = emptyBlockNamed(c, name, existing);
    if (made.isNull()) {
        c.print(L"Invalid block name.");
        return;
    }
    const AcGeMatrix3d toBlock =
        (c.userToWorld() * AcGeMatrix3d::translation(base.asVector())).inverse();
    c.transform(cloneInto(c.database(), made, ids), toBlock);
    c.erase(ids);
}

}  // namespace sg::commands
