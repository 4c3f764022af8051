#include "oracle/profile/one_step_changes.h"

#include "saml/xml.h"
#include "support/xml_trees.h"

#include <cstddef>
#include <map>

namespace OneStepChanges {
namespace {

using namespace Saml::Xml;

std::vector<ElementNode*> ElementsOf(Document& document) {
    std::vector<ElementNode*> elements{document.GetRootElement()};
    for (std::size_t i = 0; i != elements.size(); ++i)
        for (ElementNode* child = GetFirstChildElement(elements[i]); child != nullptr;
             child = GetNextSiblingElement(child))
            elements.push_back(child);
    return elements;
}

Held<ElementNode> CopyOf(ElementNode& element) {
    const Held<ElementNode> copy = NewElement(element.GetLocalName(), element.GetPrefix());
    std::map<std::string, std::string> attributes;
    element.GetAttributes(attributes);
    for (const auto& [name, value] : attributes)
        copy->SetAttribute(name, value);
    for (Node* child : ChildrenOf(element)) {
        if (auto* const text = dynamic_cast<TextNode*>(child))
            copy->AppendChild(NewText(text->GetText()).get());
        else if (auto* const childElement = dynamic_cast<ElementNode*>(child))
            copy->AppendChild(CopyOf(*childElement).get());
    }
    return copy;
}

struct Change {
    const char* name;
    void (*apply)(ElementNode&);
};

// The root element cannot do without these; nor can what has no next element be exchanged with it.
const Change kChangesAmongSiblings[] = {
    {"removed", [](ElementNode& element) { element.GetParent()->RemoveChild(&element); }},
    {"repeated",
     [](ElementNode& element) {
         element.GetParent()->InsertAfter(CopyOf(element).get(), &element);
     }},
    {"exchanged with the next", [](ElementNode& element) {
         ElementNode* const next = GetNextSiblingElement(&element);
         if (next != nullptr) element.GetParent()->InsertAfter(&element, next);
     }}};

const Change kChanges[] = {
    {"renamed", [](ElementNode& element) { element.SetLocalName("Other"); }},
    {"in another namespace", [](ElementNode& element) { element.SetPrefix("xsi"); }},
    {"with an attribute", [](ElementNode& element) { element.SetAttribute("extra", "1"); }},
    {"with a text", [](ElementNode& element) { element.AppendChild(NewText("text").get()); }},
    {"with a child in front",
     [](ElementNode& element) {
         const Held<ElementNode> child = NewElement("Other");
         if (element.GetFirstChild() != nullptr)
             element.InsertBefore(child.get(), element.GetFirstChild());
         else
             element.AppendChild(child.get());
     }},
    {"with a child behind",
     [](ElementNode& element) { element.AppendChild(NewElement("Other").get()); }},
    {"emptied", [](ElementNode& element) {
         while (element.GetFirstChild() != nullptr)
             element.RemoveChild(element.GetFirstChild());
     }}};

/// The element's name with that of its parent.
std::string PlaceOf(ElementNode& element) {
    auto* const parent = dynamic_cast<ElementNode*>(element.GetParent());
    return (parent != nullptr ? parent->GetLocalName() + "/" : "") + element.GetLocalName();
}

class Changing {
  public:
    Changing(const std::string& text, const std::function<void(const Variant&)>& visit)
        : text_(text), visit_(visit) {}

    void Run() {
        const std::size_t count = ElementsOf(*Parsed(text_)).size();
        for (std::size_t number = 0; number != count; ++number) {
            for (const Change& change : kChanges)
                Try(number, change.name, change.apply);
            if (number != 0)
                for (const Change& change : kChangesAmongSiblings)
                    Try(number, change.name, change.apply);
            for (const std::string& attribute : AttributesOf(number)) {
                Try(number, "without " + attribute,
                    [&](ElementNode& element) { element.RemoveAttribute(attribute); });
                Try(number, "with an empty " + attribute,
                    [&](ElementNode& element) { element.SetAttribute(attribute, ""); });
            }
        }
    }

  private:
    std::vector<std::string> AttributesOf(std::size_t number) {
        const Held<Document> document = Parsed(text_);
        std::map<std::string, std::string> attributes;
        ElementsOf(*document)[number]->GetAttributes(attributes);
        std::vector<std::string> names;
        for (const auto& [name, value] : attributes)
            if (name.compare(0, 5, "xmlns") != 0) names.push_back(name);
        return names;
    }

    void Try(std::size_t number, const std::string& name,
             const std::function<void(ElementNode&)>& apply) {
        const Held<Document> document = Parsed(text_);
        const Held<ElementNode> element(ElementsOf(*document)[number]);
        const std::string place = PlaceOf(*element);
        apply(*element);
        Saml::StringWriter out;
        document->GetRootElement()->Write(out);
        visit_({place + " " + name, out.data});
    }

    const std::string& text_;
    const std::function<void(const Variant&)>& visit_;
};

}  // namespace

void ForEach(const std::string& text, const std::function<void(const Variant&)>& visit) {
    Changing(text, visit).Run();
}

}  // namespace OneStepChanges
