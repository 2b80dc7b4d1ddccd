#include "host/exchange/step_file.h"

#include "base/encoding.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "host/exchange/step_library.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/tables/header_variables.h"
#include "host/render/looks.h"
#include "host/seam/file_error.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/exact_shape.h"

namespace sg::exchange {
namespace {

constexpr int kDeepestNesting = 64;
constexpr uint32_t kWhite = 0xFFFFFF;

// As the format knows them. A drawing without a unit is taken to be in millimetres.
std::string unitOf(const AcDbDatabase& database) {
    switch (model::DatabaseState::of(database).header().get<int32_t>(L"INSUNITS")) {
        case 1:
            return "INCH";
        case 2:
            return "FT";
        case 3:
            return "MI";
        case 5:
            return "CM";
        case 6:
            return "M";
        case 7:
            return "KM";
        default:
            return "MM";
    }
}

class Collector {
  public:
    explicit Collector(const AcDbDatabase& database)
        : database_(database), looks_(database, kWhite, {}) {}

    std::vector<StepShape> shapes;
    std::map<std::wstring, size_t> left;

    void collect() { collectBlock(database_.modelSpaceId(), {}, nullptr, 0); }

  private:
    void collectBlock(AcDbObjectId id, const AcGeMatrix3d& placement,
                      const render::PlainProperties* outer, int depth) {
        AcDbBlockTableRecord* block = nullptr;
        if (depth > kDeepestNesting || acdbOpenObject(block, id) != Acad::eOk) return;
        for (const AcDbObjectId entityId : block->entityIds()) {
            AcDbEntity* entity = nullptr;
            if (acdbOpenObject(entity, entityId) != Acad::eOk) continue;
            collectEntity(*entity, placement, outer, depth);
            entity->close();
        }
        block->close();
    }

    void collectEntity(const AcDbEntity& entity, const AcGeMatrix3d& placement,
                       const render::PlainProperties* outer, int depth) {
        const render::PlainProperties plain = looks_.plain(render::Properties::of(entity), outer);
        if (const auto* const reference = AcDbBlockReference::cast(&entity)) {
            collectBlock(reference->blockTableRecord(), placement * reference->blockTransform(),
                         &plain, depth + 1);
            return;
        }
        auto* const extension =
            static_cast<sgExactShapePE*>(entity.isA()->queryX(sgExactShapePE::desc()));
        StepShape shape;
        if (extension == nullptr || !extension->exactShape(&entity, shape.shape)) {
            ++left[model::dxfNameOf(entity)];
            return;
        }
        AcDbHandle handle;
        entity.getAcDbHandle(handle);
        shape.placement = placement;
        shape.name = std::wstring(model::dxfNameOf(entity)) + L" " + handle.text();
        shape.layer = looks_.layerName(plain.layer);
        shape.color = looks_.look(plain, 1).color;
        shapes.push_back(std::move(shape));
    }

    const AcDbDatabase& database_;
    render::Looks looks_;
};

}  // namespace

bool isStepName(const std::wstring& path) {
    const std::wstring folded = lowerCased(path);
    return folded.ends_with(L".step") || folded.ends_with(L".stp");
}

StepResult writeStepFile(const AcDbDatabase& database, const std::wstring& path) {
    Collector collector(database);
    collector.collect();
    if (collector.shapes.empty()) {
        throw FileError(path + L": the drawing has no solids to write");
    }
    const StepLibrary* const library = stepLibrary();
    if (library == nullptr) {
        throw FileError(
            L"STEP files cannot be written: the library lib/libswiftgate-step.so is "
            L"not there or does not load");
    }
    ReplacementFile file(path);
    if (!file.isOpen() ||
        !library->write(collector.shapes, unitOf(database), file.unfinishedName()) ||
        !file.commit()) {
        throw FileError(path + L": the file cannot be written");
    }
    return {collector.shapes.size(), std::move(collector.left)};
}

}  // namespace sg::exchange
