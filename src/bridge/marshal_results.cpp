#include "bridge/marshal_results.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "bridge/marshal_builders.h"
#include "bridge/marshal_variants.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

// A list under construction, released unless it is taken.
class ListInProgress {
  public:
    ListInProgress() { beginResultList(head_, tail); }
    ListInProgress(const ListInProgress&) = delete;
    ListInProgress& operator=(const ListInProgress&) = delete;
    ~ListInProgress() { acutRelRb(head_); }

    // Behind the RTLB.
    const resbuf* items() const { return head_->rbnext; }

    resbuf* closeAndTake() {
        appendListEnd(tail);
        return std::exchange(head_, nullptr);
    }

  private:
    resbuf* head_ = nullptr;

  public:
    resbuf* tail = nullptr;
};

// The keys of a result's records. Where the array shares the name of a field among the records, so
// does the list.
class FieldKeys {
  public:
    void beginRecord() { field_ = 0; }

    void appendPair(resbuf*& tail, const VARIANT& name, const VARIANT& value) {
        if (field_ == known_.size()) known_.emplace_back();
        Known& known = known_[field_++];
        if (name.vt == VT_BSTR && name.bstrVal != nullptr && name.bstrVal == known.name) {
            sg::appendPair(tail, *known.key, value);
            return;
        }
        resbuf* const before = tail;
        sg::appendPair(tail, variantText(name), value);
        known = {name.vt == VT_BSTR ? name.bstrVal : nullptr, before->rbnext->rbnext};
    }

  private:
    struct Known {
        const wchar_t* name = nullptr;
        const resbuf* key = nullptr;  // the node behind the pair's RTLB
    };
    std::vector<Known> known_;  // by place in the record
    size_t field_ = 0;
};

// Appends the records and values from `at` on, at most so many, and moves `at` behind them.
void appendRecords(resbuf*& tail, std::span<const COleVariant> items, size_t& at, size_t most) {
    FieldKeys keys;
    bool recordOpen = false;
    size_t count = 0;
    for (; at < items.size(); ++at) {
        const COleVariant& item = items[at];
        if (isNewRecordMarker(item)) {
            if (recordOpen) appendListEnd(tail);
            recordOpen = false;
            if (count++ == most) return;
            appendListBegin(tail);
            recordOpen = true;
            keys.beginRecord();
        } else if (!recordOpen) {
            if (count++ == most) return;
            appendVariant(tail, item);
        } else if (at + 1 < items.size()) {
            keys.appendPair(tail, item, items[++at]);
        }
    }
    if (recordOpen) appendListEnd(tail);
}

void returnAndRelease(resbuf* list) {
    acedRetList(list);
    acutRelRb(list);
}

}  // namespace

resbuf* buildPairList(const COleSafeArray& array) {
    ListInProgress list;
    const std::span<const COleVariant> items = array.Variants();
    for (size_t i = 0; i + 1 < items.size(); i += 2) {
        appendPair(list.tail, variantText(items[i]), items[i + 1]);
    }
    return list.closeAndTake();
}

resbuf* buildValueList(const COleSafeArray& array) {
    ListInProgress list;
    for (const COleVariant& item : array.Variants())
        appendVariant(list.tail, item);
    return list.closeAndTake();
}

resbuf* buildRecordList(const COleSafeArray& array) {
    ListInProgress list;
    size_t at = 0;
    appendRecords(list.tail, array.Variants(), at, SIZE_MAX);
    return list.closeAndTake();
}

void returnPairList(const COleSafeArray& array) {
    returnAndRelease(buildPairList(array));
}

void returnValueList(const COleSafeArray& array) {
    returnAndRelease(buildValueList(array));
}

// In parts, since a query's result may have millions of nodes; a part's memory serves the next.
void returnRecordList(const COleSafeArray& array) {
    constexpr size_t kRecordsInPart = 512;
    const std::span<const COleVariant> items = array.Variants();
    size_t at = 0;
    do {
        const bool first = at == 0;
        ListInProgress part;
        appendRecords(part.tail, items, at, kRecordsInPart);
        sgRetListPart(part.items(), first);
    } while (at < items.size());
}

}  // namespace sg
