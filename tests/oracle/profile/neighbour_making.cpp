#include "oracle/profile/neighbour_making.h"

namespace Oracle {
namespace {

void AddPlaces(const Markup& node, Place& place, std::vector<Place>& places) {
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        if (!node.children[i].IsElement()) continue;
        place.push_back(i);
        places.push_back(place);
        AddPlaces(node.children[i], place, places);
        place.pop_back();
    }
}

}  // namespace

std::vector<Place> ElementPlaces(const Markup& document) {
    Place place;
    std::vector<Place> places;
    AddPlaces(document, place, places);
    return places;
}

const Markup& At(const Markup& document, const Place& place) {
    const Markup* node = &document;
    for (const std::size_t number : place)
        node = &node->children[number];
    return *node;
}

Markup& At(Markup& document, const Place& place) {
    Markup* node = &document;
    for (const std::size_t number : place)
        node = &node->children[number];
    return *node;
}

std::string PathTo(const Markup& document, const Place& place) {
    const Markup* node = &document;
    std::string path;
    for (const std::size_t number : place) {
        node = &node->children[number];
        path += "/" + node->LocalName() + "[" + std::to_string(number) + "]";
    }
    return path.empty() ? "the document" : path;
}

std::vector<Slot> SlotsOf(const Markup& element) {
    if (element.children.empty()) return {Slot::Beginning};
    if (element.children.size() == 1 && element.children[0].IsElement())
        return {Slot::Beginning, Slot::End};
    return {Slot::Beginning, Slot::Middle, Slot::End};
}

const char* NameOf(Slot slot) {
    if (slot == Slot::Beginning) return "at the beginning";
    return slot == Slot::Middle ? "in the middle" : "at the end";
}

void Insert(Markup& element, Slot slot, const Markup& node) {
    std::vector<Markup>& children = element.children;
    std::size_t index = slot == Slot::Beginning ? 0 : children.size();
    if (slot == Slot::Middle) {
        index = children.size() / 2;
        if (children.size() == 1) {
            // Between groups of Base64, where white space is allowed.
            const std::string text = children[0].text;
            const std::size_t half = text.size() < 8 ? text.size() / 2 : text.size() / 8 * 4;
            children = {TextOf(text.substr(0, half)), TextOf(text.substr(half))};
            index = 1;
        }
    }
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), node);
}

}  // namespace Oracle
