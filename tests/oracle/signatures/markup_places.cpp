#include "oracle/signatures/markup_places.h"

#include "support/qualified_names.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace MarkupPlaces {
namespace {

constexpr char kBlanks[] = " \t\r\n";

class Scan {
  public:
    explicit Scan(const std::string& xml) : xml_(xml) {}

    Places All() {
        while (at_ != xml_.size()) {
            if (xml_[at_] != '<')
                CharacterData();
            else if (StartsWith("<?"))
                at_ = Behind("?>");
            else if (StartsWith("<!--"))
                at_ = Behind("-->");
            else if (StartsWith("</"))
                EndTag();
            else
                StartTag();
        }
        if (!open_.empty()) throw std::runtime_error("an element is not closed");
        return std::move(places_);
    }

  private:
    bool StartsWith(const char* text) const { return xml_.rfind(text, at_) == at_; }

    /// The place behind the next `text`.
    std::size_t Behind(const std::string& text) const {
        const std::size_t found = xml_.find(text, at_);
        if (found == std::string::npos) throw std::runtime_error("there is no " + text);
        return found + text.size();
    }

    /// From here to the next of `ends`, which is then here.
    Span Until(const char* ends) {
        const std::size_t begin = at_;
        at_ = xml_.find_first_of(ends, at_);
        if (at_ == std::string::npos) throw std::runtime_error("the text ends in markup");
        return {begin, at_};
    }

    void CharacterData() {
        const std::size_t begin = at_;
        at_ = std::min(xml_.find('<', at_), xml_.size());
        if (!open_.empty()) places_.runs.push_back({{begin, at_}, open_.back()});
    }

    void EndTag() {
        Element& element = places_.elements.at(open_.at(open_.size() - 1));
        at_ += 2;
        element.endName = Until(">");
        element.whole.end = ++at_;
        open_.pop_back();
    }

    void StartTag() {
        Element element{};
        element.whole.begin = element.startTag.begin = at_++;
        element.startName = Until(" \t\r\n/>");
        const std::string name = xml_.substr(element.startName.begin, element.startName.Size());
        element.localName = QualifiedNames::LocalNameOf(name);
        while (xml_[at_] != '>' && xml_[at_] != '/')
            ReadAttribute(element);
        if (!open_.empty()) element.parent = open_.back();

        const bool isEmpty = xml_[at_] == '/';
        at_ = Behind(">");
        element.whole.end = element.startTag.end = at_;
        if (!isEmpty) open_.push_back(places_.elements.size());
        places_.elements.push_back(element);
    }

    void ReadAttribute(Element& element) {
        const std::size_t begin = at_;
        at_ = xml_.find_first_not_of(kBlanks, at_);
        if (xml_[at_] == '>' || xml_[at_] == '/') return;
        Attribute attribute{};
        attribute.name = Until("=");
        ++at_;
        const char quote[] = {xml_[at_++], '\0'};
        attribute.value = Until(quote);
        attribute.whole = {begin, ++at_};
        element.attributes.push_back(attribute);
    }

    const std::string& xml_;
    std::size_t at_ = 0;
    std::vector<std::size_t> open_;
    Places places_;
};

}  // namespace

Places PlacesOf(const std::string& xml) {
    return Scan(xml).All();
}

}  // namespace MarkupPlaces
