#include "oracle/profile/assertion_neighbours.h"

#include "oracle/profile/assertion_grammar.h"
#include "oracle/profile/full_assertion.h"
#include "oracle/profile/neighbour_making.h"
#include "oracle/profile/value_faults.h"

#include <utility>

namespace Oracle {
namespace {

constexpr char kStrayNamespace[] = "urn:example:stray";
constexpr char kStrayText[] = "stray!";  // no Base64, no date, no name

std::string Qualified(const std::string& prefix, const std::string& localName) {
    return prefix.empty() ? localName : prefix + ":" + localName;
}

void Rename(Markup& element, const std::string& prefix) {
    element.name = Qualified(prefix, element.LocalName());
}

/// Sets the declaration of a prefix, or replaces the one that is there.
void Declare(Markup& element, const std::string& prefix, const std::string& uri) {
    const std::string name = prefix.empty() ? "xmlns" : "xmlns:" + prefix;
    for (Attribute& attribute : element.attributes) {
        if (attribute.name != name) continue;
        attribute.value = uri;
        return;
    }
    element.attributes.push_back({name, uri});
}

/// What the prefix of the element at `place` is bound to.
std::string NamespaceAt(const Markup& document, const Place& place) {
    Scope scope;
    const Markup* node = &document;
    for (const std::size_t number : place) {
        node = &node->children[number];
        scope = ScopeIn(scope, *node);
    }
    std::string uri;
    Resolve(scope, node->Prefix(), uri);
    return uri;
}

void SwapWithNext(const Making& making, const Place& parent, std::size_t number) {
    if (number + 1 == At(making.Base(), parent).children.size()) return;
    Place place = parent;
    place.push_back(number);
    making.Make("swapped with its next sibling", parent, "child " + std::to_string(number),
                [&](Markup& element) {
                    std::swap(element.children[number], element.children[number + 1]);
                });
}

void Structure(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        Place parent = place;
        const std::size_t number = parent.back();
        parent.pop_back();
        const auto at = [&](Markup& element) {
            return element.children.begin() + static_cast<std::ptrdiff_t>(number);
        };
        const std::string child = "child " + std::to_string(number);
        making.Make("removed", parent, child,
                    [&](Markup& element) { element.children.erase(at(element)); });
        making.Make("duplicated", parent, child, [&](Markup& element) {
            const Markup copy = element.children[number];
            element.children.insert(at(element), copy);
        });
        SwapWithNext(making, parent, number);
        if (number + 1 < At(base, parent).children.size())
            making.Make("everything behind it removed", parent, child, [&](Markup& element) {
                element.children.erase(at(element) + 1, element.children.end());
            });
        if (At(base, place).children.empty()) continue;
        making.Make("emptied", place, {}, [](Markup& element) { element.children.clear(); });
        making.Make("replaced by its content", parent, child, [&](Markup& element) {
            const Markup whole = element.children[number];
            element.children.insert(element.children.erase(at(element)), whole.children.begin(),
                                    whole.children.end());
        });
    }
}

void Names(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        const std::string prefix = At(base, place).Prefix();
        const std::string uri = NamespaceAt(base, place);
        making.Make("renamed", place, {}, [](Markup& element) { element.name += "X"; });
        making.Make("spelled in small letters", place, {}, [](Markup& element) {
            std::string small = element.LocalName();
            small[0] = static_cast<char>(small[0] - 'A' + 'a');
            element.name = Qualified(element.Prefix(), small);
        });
        making.Make("prefix bound to another namespace", place, {},
                    [&](Markup& element) { Declare(element, prefix, kStrayNamespace); });
        making.Make("moved to a foreign prefix", place, {}, [](Markup& element) {
            Rename(element, "stray");
            Declare(element, "stray", kStrayNamespace);
        });
        making.Make("moved to a prefix that nothing declares", place, {},
                    [](Markup& element) { Rename(element, "none"); });
        making.Make("prefix dropped", place, {}, [](Markup& element) { Rename(element, ""); });
        making.Make("moved to another namespace of the profile", place, {}, [&](Markup& element) {
            const bool isToken = uri == Grammar::kAssertionNamespace;
            Declare(element, prefix,
                    isToken ? Grammar::kSignatureNamespace : Grammar::kAssertionNamespace);
        });
        making.Make("a colon in front of its local name", place, {},
                    [](Markup& element) { element.name = ":" + element.LocalName(); });
        making.Make("a second colon", place, {}, [](Markup& element) { element.name += ":X"; });
        making.Make("the same name through another prefix", place, {}, [&](Markup& element) {
            Rename(element, "other");
            Declare(element, "other", uri);
        });
        making.Make("the same name through a default declaration", place, {}, [&](Markup& element) {
            Rename(element, "");
            Declare(element, "", uri);
        });
    }
}

void ExtraAttributes(const Making& making, const Place& place) {
    making.Make("an extra attribute", place, {}, [](Markup& element) {
        element.attributes.push_back({"extra", "1"});
    });
    making.Make("an extra attribute with a prefix", place, {}, [](Markup& element) {
        Declare(element, "stray", kStrayNamespace);
        element.attributes.push_back({"stray:extra", "1"});
    });
    making.Make("an extra attribute with a prefix that nothing declares", place, {},
                [](Markup& element) {
                    element.attributes.push_back({"none:extra", "1"});
                });
    making.Make("an extra attribute of XML's own", place, {}, [](Markup& element) {
        element.attributes.push_back({"xml:lang", "en"});
    });
    making.Make("an extra attribute behind a colon", place, {}, [](Markup& element) {
        element.attributes.push_back({":extra", "1"});
    });
    making.Make("a default declaration behind a colon", place, {}, [](Markup& element) {
        element.attributes.push_back({":xmlns", kStrayNamespace});
    });
    making.Make("a declaration of no prefix", place, {}, [](Markup& element) {
        element.attributes.push_back({"xmlns:", kStrayNamespace});
    });
    making.Make("nil", place, {}, [](Markup& element) {
        Declare(element, "xsi", Grammar::kInstanceNamespace);
        element.attributes.push_back({"xsi:nil", "true"});
    });
    making.Make("an identifier that the assertion has", place, {}, [](Markup& element) {
        Declare(element, "stray", kStrayNamespace);
        element.attributes.push_back({"stray:id", kAssertionId});
    });
}

void ChangedAttributes(const Making& making, const Place& place) {
    const std::vector<Attribute>& attributes = At(making.Base(), place).attributes;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const std::string name = attributes[i].name;
        making.Make("an attribute removed", place, name, [&](Markup& element) {
            element.attributes.erase(element.attributes.begin() + static_cast<std::ptrdiff_t>(i));
        });
        making.Make("an attribute repeated", place, name,
                    [&](Markup& element) { element.attributes.push_back(element.attributes[i]); });
        making.Make("an attribute without a value", place, name,
                    [&](Markup& element) { element.attributes[i].value.clear(); });
        if (i + 1 < attributes.size())
            making.Make("an attribute swapped with the next", place, name, [&](Markup& element) {
                std::swap(element.attributes[i], element.attributes[i + 1]);
            });
        making.Make("an attribute renamed", place, name,
                    [&](Markup& element) { element.attributes[i].name += "X"; });
        if (IsDeclaration(name)) continue;
        making.Make("an attribute moved to a foreign prefix", place, name, [&](Markup& element) {
            element.attributes[i].name = "stray:" + LocalNameOf(name);
            Declare(element, "stray", kStrayNamespace);
        });
        making.Make("an attribute moved to XML's own prefix", place, name, [&](Markup& element) {
            element.attributes[i].name = "xml:" + LocalNameOf(name);
            Declare(element, "xml", "http://www.w3.org/XML/1998/namespace");
        });
        making.Make(
            "an attribute moved to a prefix that nothing declares", place, name,
            [&](Markup& element) { element.attributes[i].name = "none:" + LocalNameOf(name); });
        making.Make("an attribute behind a colon", place, name,
                    [&](Markup& element) { element.attributes[i].name = ":" + LocalNameOf(name); });
        making.Make("an attribute repeated behind a colon", place, name, [&](Markup& element) {
            element.attributes.push_back({":" + name, element.attributes[i].value});
        });
        if (PrefixOf(name).empty()) continue;
        making.Make("an attribute without its prefix", place, name,
                    [&](Markup& element) { element.attributes[i].name = LocalNameOf(name); });
        for (const char* const other : {"other", "zother"})  // before the usual one and behind it
            making.Make("an attribute repeated through another prefix", place, name + ", " + other,
                        [&](Markup& element) {
                            element.attributes.push_back(
                                {other + (":" + LocalNameOf(name)), element.attributes[i].value});
                            Declare(element, other, Grammar::kInstanceNamespace);
                        });
        making.Make("the same attribute through another prefix", place, name, [&](Markup& element) {
            element.attributes[i].name = "other:" + LocalNameOf(name);
            Declare(element, "other", Grammar::kInstanceNamespace);
        });
    }
}

void Attributes(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        ExtraAttributes(making, place);
        ChangedAttributes(making, place);
    }
}

/// In every gap between two elements, where `PutIn` knows but three places.
void PutBehind(const Making& making, const std::string& fault, const Place& place,
               const Markup& node) {
    Place parent = place;
    const std::size_t number = parent.back();
    parent.pop_back();
    if (parent.empty()) return;  // behind the root
    making.Make(fault, parent, "child " + std::to_string(number), [&](Markup& element) {
        element.children.insert(element.children.begin() + static_cast<std::ptrdiff_t>(number) + 1,
                                node);
    });
}

void ForeignContent(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        PutBehind(making, "text behind it", place, TextOf(kStrayText));
        PutBehind(making, "a foreign element behind it", place,
                  ElementOf("stray:Stray", {{"xmlns:stray", kStrayNamespace}}));
        making.PutIn("a foreign element inside", place,
                     ElementOf("stray:Stray", {{"xmlns:stray", kStrayNamespace}}));
        making.PutIn("an element of its own namespace inside", place,
                     ElementOf(Qualified(At(base, place).Prefix(), "Stray"), {}));
        making.PutAtTheEnd("itself inside", place, At(base, place));
        making.PutIn("text inside", place, TextOf(kStrayText));
        making.PutIn("a CDATA section inside", place, Leaf(MarkupKind::CData, kStrayText));
        making.PutAtTheEnd("a blank CDATA section inside", place, Leaf(MarkupKind::CData, " "));
        making.PutAtTheEnd("a reference to a character inside", place,
                           Leaf(MarkupKind::EntityReference, "amp"));
        making.PutAtTheEnd("a reference to text inside", place,
                           Leaf(MarkupKind::EntityReference, "stray"));
        making.PutAtTheEnd("a reference to nothing that is declared inside", place,
                           Leaf(MarkupKind::EntityReference, "none"));
        making.PutAtTheEnd("a processing instruction inside", place,
                           Leaf(MarkupKind::Instruction, "stray"));
    }
}

void Around(const Making& making) {
    for (const Slot slot : {Slot::Beginning, Slot::End}) {
        const auto put = [&](const std::string& fault, const Markup& node) {
            making.Make(fault, {}, NameOf(slot),
                        [&](Markup& document) { Insert(document, slot, node); });
        };
        put("a comment around", Leaf(MarkupKind::Comment, "stray"));
        put("a processing instruction around", Leaf(MarkupKind::Instruction, "stray"));
        put("blanks around", TextOf("\n"));
    }
}

void NeutralContent(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    Around(making);
    for (const Place& place : ElementPlaces(base)) {
        making.PutIn("a comment inside", place, Leaf(MarkupKind::Comment, "stray"));
        making.PutIn("blanks inside", place, TextOf("\n\t "));
        making.PutAtTheEnd("a reference to a blank inside", place,
                           Leaf(MarkupKind::EntityReference, "blank"));
        making.PutAtTheEnd("a reference to an empty text inside", place,
                           Leaf(MarkupKind::EntityReference, "void"));
    }
}

void Declarations(const Markup& base, const Visit& visit) {
    const Making making(base, visit);
    for (const Place& place : ElementPlaces(base)) {
        const std::string prefix = At(base, place).Prefix();
        const std::string uri = NamespaceAt(base, place);
        making.Make("an unused declaration", place, {},
                    [](Markup& element) { Declare(element, "stray", kStrayNamespace); });
        making.Make("an unused default declaration", place, {},
                    [](Markup& element) { Declare(element, "", kStrayNamespace); });
        making.Make("an empty default declaration", place, {},
                    [](Markup& element) { Declare(element, "", ""); });
        making.Make("its declaration once more", place, {},
                    [&](Markup& element) { Declare(element, prefix, uri); });
        making.Make("a second prefix for its namespace", place, {},
                    [&](Markup& element) { Declare(element, "other", uri); });
        making.Make("its declaration undone", place, {},
                    [&](Markup& element) { Declare(element, prefix, ""); });
    }
}

}  // namespace

const std::vector<FaultFamily>& FaultFamilies() {
    static const std::vector<FaultFamily> families = {{"Structure", Structure},
                                                      {"Names", Names},
                                                      {"Attributes", Attributes},
                                                      {"ForeignContent", ForeignContent},
                                                      {"NeutralContent", NeutralContent},
                                                      {"Declarations", Declarations},
                                                      {"Values", ValueFaults},
                                                      {"Texts", TextFaults}};
    return families;
}

}  // namespace Oracle
