#pragma once

#include "oracle/profile/assertion_neighbours.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// What the families of faults are written with.
namespace Oracle {

/// Child numbers from the document down.
using Place = std::vector<std::size_t>;

/// Every element, parents before their children.
std::vector<Place> ElementPlaces(const Markup& document);
const Markup& At(const Markup& document, const Place& place);
Markup& At(Markup& document, const Place& place);
/// Local names from the root down, each with its number among its siblings.
std::string PathTo(const Markup& document, const Place& place);

/// Where a node can be put into an element; the middle of a text splits it.
enum class Slot { Beginning, Middle, End };
std::vector<Slot> SlotsOf(const Markup& element);
const char* NameOf(Slot slot);
void Insert(Markup& element, Slot slot, const Markup& node);

/// Copies the base, changes the copy at one element, and shows it.
class Making {
  public:
    Making(const Markup& base, const Visit& visit) : base_(base), visit_(visit) {}

    const Markup& Base() const { return base_; }

    template <class Change>
    void Make(const std::string& fault, const Place& place, const std::string& detail,
              const Change& change) const {
        Neighbour neighbour{fault, PathTo(base_, place) + (detail.empty() ? "" : ", " + detail),
                            base_};
        change(At(neighbour.document, place));
        visit_(neighbour);
    }

    /// Puts `node` into every slot of the element.
    void PutIn(const std::string& fault, const Place& place, const Markup& node) const {
        for (const Slot slot : SlotsOf(At(base_, place)))
            Make(fault, place, NameOf(slot), [&](Markup& element) { Insert(element, slot, node); });
    }

    void PutAtTheEnd(const std::string& fault, const Place& place, const Markup& node) const {
        Make(fault, place, {}, [&](Markup& element) { Insert(element, Slot::End, node); });
    }

  private:
    const Markup& base_;
    const Visit& visit_;
};

}  // namespace Oracle
