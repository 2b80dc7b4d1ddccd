// A module of a few functions that shows how values travel between AutoLISP and native code, with
// the call guard, the readers and the builders that the product's own functions use.
//
//   (sample-length text)          the length of a string, as a real
//   (sample-middle p q)           the point halfway between two points
//   (sample-flatten list)         the list as the database layer sees it, with structure markers
//   (sample-pairs list)           names and values, whichever way they are grouped
//   (sample-records count fields) a query's result of that size

#include <fmt/xchar.h>

#include <vector>

#include "bridge/call_guard.h"
#include "bridge/function_table.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"
#include "platform/rx/messages.h"
#include "platform/rx/modules.h"

namespace {

using namespace sg;

// The call's arguments, released on every way out.
class Arguments {
  public:
    Arguments() : list_(acedGetArgs()), at(list_) {}
    ~Arguments() { acutRelRb(list_); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

  private:
    resbuf* list_;

  public:
    const resbuf* at;  // the next argument; null at the end
};

int sampleLength() {
    Arguments arguments;
    std::wstring text;
    if (!nextString(arguments.at, text)) return kLispWrongType;
    acedRetReal(static_cast<double>(text.size()));
    return kLispOk;
}

int sampleMiddle() {
    Arguments arguments;
    AcGePoint3d p, q;
    if (!nextPoint3d(arguments.at, p)) return arguments.at ? kLispWrongType : kLispTooFew;
    if (!nextPoint3d(arguments.at, q)) return arguments.at ? kLispWrongType : kLispTooFew;
    const ads_point middle = {(p.x + q.x) / 2, (p.y + q.y) / 2, (p.z + q.z) / 2};
    acedRetPoint(middle);
    return kLispOk;
}

int sampleFlatten() {
    Arguments arguments;
    COleSafeArray array;
    if (!listToVariantArray(arguments.at, array)) return kLispBadData;
    returnValueList(array);
    return kLispOk;
}

int samplePairs() {
    Arguments arguments;
    COleSafeArray array;
    if (!pairsToVariantArray(arguments.at, array)) return kLispBadData;
    returnPairList(array);
    return kLispOk;
}

int sampleRecords() {
    Arguments arguments;
    int32_t count = 0, fields = 0;
    if (!nextInt(arguments.at, count) || !nextInt(arguments.at, fields)) return kLispTooFew;
    if (count < 0 || fields < 1 || count > 10'000'000 / fields) return kLispBadData;
    std::vector<COleVariant> elements;
    for (int32_t record = 0; record < count; ++record) {
        elements.push_back(COleVariant::fromString(kNewRecordMarker));
        for (int32_t field = 0; field < fields; ++field) {
            elements.push_back(COleVariant::fromString(fmt::format(L"field{}", field)));
            if (field % 2 == 0) {
                elements.push_back(COleVariant::fromInt32(record));
            } else {
                elements.push_back(COleVariant::fromString(fmt::format(L"value {}", record)));
            }
        }
    }
    COleSafeArray array;
    array.CreateFromVariants(std::move(elements));
    returnRecordList(array);
    return kLispOk;
}

template <LispImplementation Implementation>
int handler() {
    return callGuard(Implementation);
}

constexpr FunctionRow kFunctions[] = {
    {L"sample-length", handler<sampleLength>},   {L"sample-middle", handler<sampleMiddle>},
    {L"sample-flatten", handler<sampleFlatten>}, {L"sample-pairs", handler<samplePairs>},
    {L"sample-records", handler<sampleRecords>},
};

}  // namespace

extern "C" SG_API AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg:
            acrxUnlockApplication(packet);
            acrxRegisterAppMDIAware(packet);
            break;
        case AcRx::kLoadDwgMsg:
            registerFunctions(kFunctions, std::size(kFunctions), 0);
            break;
        default:
            break;
    }
    return AcRx::kRetOK;
}

extern "C" SG_API int acrxGetApiVersion() {
    return kAcRxApiVersion;
}
