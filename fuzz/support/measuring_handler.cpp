#include "support/measuring_handler.h"

#include "support/ignoring_handler.h"

#include <algorithm>
#include <cstring>

namespace Fuzz {
namespace {

using namespace Saml::Xml;

class MeasuringHandler final : public IgnoringHandler {
  public:
    Measures measures;

    void ProcessingInstruction(const std::string& target, const std::string& data) override {
        // Nothing but comments and elements may stand beside one; the document's tree refuses it
        // inside an element.
        if (open_ != 0) throw Saml::InvalidArgumentException("no instruction inside an element");
        Leaf(target.size() + data.size());
    }
    void StartElement(const std::string& name, unsigned, unsigned,
                      const char** attributes) override {
        std::size_t size = name.size();
        for (; *attributes != nullptr; ++attributes)
            size += std::strlen(*attributes);
        Leaf(size);
        ++open_;
    }
    void EndElement(const std::string&) override { Close(); }
    void StartCData() override {
        Leaf(0);
        ++open_;
    }
    void EndCData() override { Close(); }
    void Comment(const std::string& text) override { Leaf(text.size()); }
    void Characters(const char*, int length) override {
        const auto size = static_cast<std::size_t>(length);
        if (!inText_)
            Leaf(size);
        else
            measures.size += length;
        inText_ = true;
    }
    void XmlDeclaration(const std::string& version, const std::string& encoding) override {
        measures.size += static_cast<long long>(version.size() + encoding.size());
    }

  private:
    void Leaf(std::size_t size) {
        inText_ = false;
        measures.size += static_cast<long long>(size);
        ++measures.nodes;
        measures.depth = std::max(measures.depth, open_);
    }
    void Close() {
        inText_ = false;
        --open_;
    }

    long long open_ = 0;
    bool inText_ = false;  ///< The next characters belong to a node that is counted already.
};

}  // namespace

std::optional<Measures> Measure(const std::string& text) {
    const boost::intrusive_ptr<MeasuringHandler> handler(new MeasuringHandler);
    if (!ParseInto(*handler, text)) return std::nullopt;
    return handler->measures;
}

}  // namespace Fuzz
