#pragma once

#include <algorithm>
#include <vector>

// A growable array. Indexes start at 0; one out of range is a fault of the caller.
template <class T>
class AcArray {
  public:
    AcArray() = default;
    // The growth is a hint that changes no result.
    explicit AcArray(int physicalLength, int growLength = 8) {
        static_cast<void>(growLength);
        if (physicalLength > 0) items_.reserve(static_cast<size_t>(physicalLength));
    }

    int length() const { return static_cast<int>(items_.size()); }
    int logicalLength() const { return length(); }
    bool isEmpty() const { return items_.empty(); }

    T& operator[](int index) { return items_[static_cast<size_t>(index)]; }
    const T& operator[](int index) const { return items_[static_cast<size_t>(index)]; }
    T& at(int index) { return (*this)[index]; }
    const T& at(int index) const { return (*this)[index]; }
    T& first() { return items_.front(); }
    const T& first() const { return items_.front(); }
    T& last() { return items_.back(); }
    const T& last() const { return items_.back(); }

    // Answers the index of the new item.
    int append(const T& item) {
        items_.push_back(item);
        return length() - 1;
    }
    AcArray& append(const AcArray& other) {
        items_.insert(items_.end(), other.items_.begin(), other.items_.end());
        return *this;
    }
    AcArray& insertAt(int index, const T& item) {
        items_.insert(items_.begin() + index, item);
        return *this;
    }
    AcArray& removeAt(int index) {
        items_.erase(items_.begin() + index);
        return *this;
    }
    // Takes out the first item that equals this one; false when there is none.
    bool remove(const T& item) {
        const int found = find(item);
        if (found < 0) return false;
        removeAt(found);
        return true;
    }
    AcArray& removeAll() {
        items_.clear();
        return *this;
    }
    AcArray& removeLast() {
        items_.pop_back();
        return *this;
    }
    // New items are default-made.
    AcArray& setLogicalLength(int length) {
        items_.resize(static_cast<size_t>(length));
        return *this;
    }
    AcArray& setPhysicalLength(int length) {
        items_.reserve(static_cast<size_t>(length));
        return *this;
    }

    bool contains(const T& item, int start = 0) const { return find(item, start) >= 0; }
    // -1 when there is none.
    int find(const T& item, int start = 0) const {
        const auto at = std::find(items_.begin() + start, items_.end(), item);
        return at == items_.end() ? -1 : static_cast<int>(at - items_.begin());
    }
    AcArray& reverse() {
        std::reverse(items_.begin(), items_.end());
        return *this;
    }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }
    T* asArrayPtr() { return items_.data(); }
    const T* asArrayPtr() const { return items_.data(); }

    friend bool operator==(const AcArray&, const AcArray&) = default;

  private:
    std::vector<T> items_;
};

using AcDbVoidPtrArray = AcArray<void*>;
using AcDbIntArray = AcArray<int>;
