#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/editor/prompts/prompter.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/editor/selection/filter.h"
#include "host/editor/selection/selection_sets.h"

namespace sg {

// How entities are to be selected, as programs write it: a method ("W", "C", "WP", "CP", "F", "L",
// "P", "X", "A", "I", "G", "BOX", or none, which asks the user) among options, in any case:
//
//   _       the method is in the language of programs     .  +     a point, without windows
//   :S      one selection only                            :E       all that is under a pick
//   :L      nothing on locked layers                      :$ :K    prompts, keywords are given
//
// Other options with a colon are taken and change nothing.
struct SelectionMode {
    std::wstring method;  // in upper case
    bool single = false;
    bool everything = false;
    bool unlockedOnly = false;
    bool onlyPoints = false;
    bool hasPrompts = false;
    bool hasKeywords = false;

    static SG_API std::optional<SelectionMode> parse(std::wstring_view text);
};

enum class SelectionOutcome {
    found,      // something
    nothing,    //
    cancelled,  // Esc
    keyword,    // one of the keywords was answered, which the prompter has
    malformed,  // an unknown method, or not the points that it needs
};

// Runs one selection.
class SG_API EntitySelector {
  public:
    struct Request {
        SelectionMode mode;
        std::vector<AcGePoint3d> points;  // in user coordinates
        std::wstring group;               // of the method "G"
        std::wstring addPrompt = L"Select objects: ";
        std::wstring removePrompt = L"Remove objects: ";
        Keywords keywords;
    };

    EntitySelector(const Prompter::Place& place, Prompter& prompter, SelectionFilter& filter)
        : place_(place), prompter_(prompter), filter_(filter) {}

    // Adds what is selected to `set`, and makes it what is selected last, unless the method is "X".
    // What is selected already is taken without asking while "PICKFIRST" is on.
    SelectionOutcome select(const Request& request, SelectionSet& set);

  private:
    using Ids = DrawingSelection::Ids;
    enum class Step { next, end, cancelled, keyword };

    bool takeImplied(const Request& request, SelectionSet& set);
    SelectionOutcome selectDirectly(const Request& request, SelectionSet& set);
    SelectionOutcome ask(const Request& request, SelectionSet& set);
    Step askOnce(const Request& request, SelectionSet& set, bool& adding);
    Step takeOption(const Request& request, const std::wstring& word, SelectionSet& set,
                    bool& adding);
    Step takeRegion(const Request& request, RegionMethod method, SelectionSet& set, bool adding);
    bool askPolygon(std::vector<AcGePoint3d>& points);
    Step windowFrom(const Request& request, const AcGePoint3d& first, SelectionSet& set,
                    bool adding);
    void change(const Request& request, const Ids& found, SelectedBy how, SelectionSet& set,
                bool adding);
    void takeSet(const Request& request, const SelectionSet& given, SelectionSet& set, bool adding);
    void tell(size_t found, size_t changed, size_t before, const SelectionSet& set, bool adding);
    Ids kept(const Request& request, const Ids& found);
    std::vector<AcGePoint3d> inWorld(const std::vector<AcGePoint3d>& points) const;

    Prompter::Place place_;
    Prompter& prompter_;
    SelectionFilter& filter_;
};

}  // namespace sg
