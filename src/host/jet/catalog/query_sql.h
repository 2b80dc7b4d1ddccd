#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/jet/catalog/query.h"

// Writes a stored query's rows out as SQL; for query.cpp alone.
namespace sg::jet {

class QueryWriter {
  public:
    explicit QueryWriter(const Query& query) : query_(query) {}

    // Throws QueryDamaged.
    std::wstring write();

  private:
    // A table, or two of these joined.
    struct Source {
        std::wstring name;  // of a table: what joins call it
        std::wstring text;  // of a table: as it stands in the statement
        std::unique_ptr<Source> left;
        std::unique_ptr<Source> right;
        int joinKind = 0;
        std::vector<std::wstring> conditions;

        bool contains(std::wstring_view table) const;
        std::wstring write(const QueryWriter& writer, bool isNested) const;
    };
    using Sources = std::vector<std::unique_ptr<Source>>;

    [[noreturn]] void fail(const std::wstring& detail) const;

    const QueryRow* rowOf(uint8_t attribute) const;
    std::wstring expressionOf(uint8_t attribute) const;
    bool hasOption(int option) const;
    // The texts of the attribute's rows that `keep` accepts, separated by ", ".
    std::wstring list(uint8_t attribute, const std::function<bool(const QueryRow&)>& keep,
                      const std::function<std::wstring(const QueryRow&)>& text) const;

    std::wstring parameters() const;
    std::wstring selection() const;
    std::wstring columns(const std::function<bool(const QueryRow&)>& keep) const;
    std::wstring from() const;
    std::wstring restriction(const std::function<bool(const QueryRow&)>& keepGroups) const;
    std::wstring select(const std::wstring& into) const;
    std::wstring orderings() const;

    std::wstring makeTable() const;
    std::wstring append() const;
    std::wstring update() const;
    std::wstring remove() const;
    std::wstring crosstab() const;
    std::wstring unite() const;
    std::wstring statement() const;

    Sources tables() const;
    void applyJoin(Sources& sources, const QueryRow& join) const;
    static size_t placeOf(Sources& sources, const std::wstring& table);
    static Source* meetingJoin(Source* source, std::wstring_view a, std::wstring_view b);

    const Query& query_;
};

}  // namespace sg::jet
