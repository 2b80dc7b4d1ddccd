#include "host/exchange/flatten.h"

#include <memory>

#include "host/model/core/block_contents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/filing.h"
#include "platform/db/plain_form.h"

namespace sg::exchange {
namespace {

using model::ObjectAccess;
using model::peek;

// The product's own classes have no application.
bool isOfApplication(const AcDbEntity& entity) {
    const model::ProxyData* const proxy = model::proxyData(entity);
    if (proxy != nullptr) {
        return !proxy->applicationName.empty() && proxy->applicationName != L"ObjectDBX Classes" &&
               proxy->applicationName != L"ISM";
    }
    return *entity.isA()->appName() != L'\0';
}

class Flattener {
  public:
    explicit Flattener(AcDbDatabase& database) : database_(database) {}

    std::map<std::wstring, size_t> run() {
        AcDbBlockTable* table = nullptr;
        if (database_.getBlockTable(table, AcDb::kForRead) != Acad::eOk) return {};
        const std::vector<AcDbObjectId> blocks = ObjectAccess::records(*table).ids;
        table->close();
        for (const AcDbObjectId block : blocks)
            flattenBlock(block);
        return std::move(left_);
    }

  private:
    void flattenBlock(AcDbObjectId blockId) {
        AcDbBlockTableRecord* block = nullptr;
        if (acdbOpenObject(block, blockId, AcDb::kForWrite) != Acad::eOk) return;
        const std::vector<AcDbObjectId> before = block->entityIds();
        std::vector<AcDbObjectId> after;
        for (const AcDbObjectId id : before) {
            const auto* const entity = peek<AcDbEntity>(id);
            const bool isTaken =
                entity != nullptr && !entity->isErased() && isOfApplication(*entity);
            if (!isTaken || !takeApart(*block, id, after)) after.push_back(id);
        }
        if (after != before) ObjectAccess::contents(*block).assign(std::move(after));
        block->close();
    }

    // The parts come behind `after`, and the entity goes.
    bool takeApart(AcDbBlockTableRecord& block, AcDbObjectId id, std::vector<AcDbObjectId>& after) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenObject(entity, id, AcDb::kForRead) != Acad::eOk) return false;
        AcDbVoidPtrArray parts;
        auto* const form =
            static_cast<sgPlainFormPE*>(entity->isA()->queryX(sgPlainFormPE::desc()));
        const Acad::ErrorStatus status =
            form == nullptr ? entity->explode(parts) : form->plainForm(entity, parts);
        const bool isApart = status == Acad::eOk;
        const std::wstring name = model::dxfNameOf(*entity);
        entity->close();
        for (void* const part : parts) {
            std::unique_ptr<AcDbEntity> plain(static_cast<AcDbEntity*>(part));
            AcDbObjectId made;
            if (!isApart || block.appendAcDbEntity(made, plain.get()) != Acad::eOk) continue;
            plain.release()->close();
            after.push_back(made);
        }
        if (isApart) {
            model::eraseObject(id);
        } else {
            ++left_[name];
        }
        return isApart;
    }

    AcDbDatabase& database_;
    std::map<std::wstring, size_t> left_;
};

}  // namespace

std::map<std::wstring, size_t> flatten(AcDbDatabase& database) {
    return Flattener(database).run();
}

}  // namespace sg::exchange
