#include "saml/xml/xml_doc_handler_impl.h"

#include "saml/xml/content_nodes_impl.h"
#include "saml/xml/element_node_impl.h"

#include <cstring>
#include <string_view>
#include <utility>

namespace Saml::Xml {
namespace {

template <class... Kinds>
constexpr bool FitPools = ((alignof(Kinds) <= NodePool::kAlignment) && ...);
static_assert(FitPools<ElementName, ElementNodeImpl, TextNodeImpl, CDataNodeImpl, CommentNodeImpl,
                       ProcessingInstructionNodeImpl>);

constexpr std::size_t kUsualDepth = 16;
constexpr std::size_t kUsualAttributes = 8;

constexpr char kNoDocument[] = "An event arrived outside a document.";

}  // namespace

XMLDocHandlerImpl::XMLDocHandlerImpl(std::int64_t maxTotalSize, std::int64_t maxNodeCount,
                                     std::int64_t maxDepth)
    : limits_(maxTotalSize, maxNodeCount, maxDepth) {
    open_.reserve(kUsualDepth);
    attributes_.reserve(kUsualAttributes);
}

void XMLDocHandlerImpl::StartDocument(bool enforceLimits, boost::intrusive_ptr<Node>& document) {
    const boost::intrusive_ptr<DocumentImpl> created(new DocumentImpl);
    open_.clear();
    pool_.Retire();
    names_ = RecentNames();  // they stand in the memory of the document before
    limits_.Start(enforceLimits);
    document_ = created;
    document = created;
}

void XMLDocHandlerImpl::StartDocument(boost::intrusive_ptr<Node>& document) {
    StartDocument(false, document);
}

void XMLDocHandlerImpl::StartElement(const std::string& qualifiedName, unsigned line,
                                     unsigned column, const char** attributes) {
    limits_.CountNode(qualifiedName.size());
    boost::intrusive_ptr<ElementNodeImpl> element(new (pool_) ElementNodeImpl(
        names_.Get(qualifiedName, pool_), static_cast<std::int32_t>(line),
        static_cast<std::int32_t>(column)));
    attributes_.clear();
    for (const char** attribute = attributes; *attribute != nullptr; attribute += 2) {
        const std::string_view attributeName(attribute[0]);
        const std::string_view value(attribute[1]);
        limits_.CountSize(value.size() + attributeName.size());
        attributes_.push_back({attributeName, value});
    }
    if (!attributes_.empty()) element->FillAttributes(attributes_, pool_);
    AddOpen(std::move(element));
}

// A stopped tokenizer may still report an end tag whose start never came to the stack.
void XMLDocHandlerImpl::EndElement(const std::string&) {
    CloseCurrent();
}

void XMLDocHandlerImpl::StartCData() {
    limits_.CountNode(0);
    AddOpen(boost::intrusive_ptr<NodeImpl>(new (pool_) CDataNodeImpl));
}

void XMLDocHandlerImpl::EndCData() {
    CloseCurrent();
}

void XMLDocHandlerImpl::Characters(const char* data, int length) {
    if (length < 0) return;
    const std::string_view run(data, static_cast<std::size_t>(length));
    TextNodeImpl* const adjacent = open_.empty() ? nullptr : AsText(open_.back()->LastChild());
    if (adjacent != nullptr) {
        limits_.CountSize(run.size());
        adjacent->AppendText(data, length);
        return;
    }
    limits_.CountNode(run.size());
    AddLeaf(boost::intrusive_ptr<NodeImpl>(new (pool_) TextNodeImpl(run)));
}

void XMLDocHandlerImpl::Comment(const std::string& text) {
    limits_.CountNode(text.size());
    AddLeaf(boost::intrusive_ptr<NodeImpl>(new (pool_) CommentNodeImpl(text)));
}

void XMLDocHandlerImpl::ProcessingInstruction(const std::string& target, const std::string& data) {
    limits_.CountNode(target.size() + data.size());
    AddLeaf(
        boost::intrusive_ptr<NodeImpl>(new (pool_) ProcessingInstructionNodeImpl(target, data)));
}

void XMLDocHandlerImpl::XmlDeclaration(const std::string& version, const std::string& encoding) {
    limits_.CountSize(version.size() + encoding.size());
    if (!document_) throw InternalErrorException(kNoDocument);
    document_->SetVersion(version);
    document_->SetEncoding(encoding);
}

void XMLDocHandlerImpl::Reset() {
    open_.clear();
    pool_.Retire();
    names_ = RecentNames();  // they may be as long as a document
    attributes_ = std::vector<Attribute>();
    document_.reset();
}

NodeImpl& XMLDocHandlerImpl::CurrentParent() const {
    if (!open_.empty()) return *open_.back();
    if (!document_) throw InternalErrorException(kNoDocument);
    return *document_;
}

void XMLDocHandlerImpl::AddLeaf(boost::intrusive_ptr<NodeImpl> node) {
    CurrentParent().AppendNew(std::move(node));
    limits_.CheckDepth(open_.size());
}

void XMLDocHandlerImpl::AddOpen(boost::intrusive_ptr<NodeImpl> node) {
    NodeImpl* const opened = node.get();
    AddLeaf(std::move(node));
    open_.push_back(opened);
}

void XMLDocHandlerImpl::CloseCurrent() noexcept {
    if (!open_.empty()) open_.pop_back();
}

XMLHandler* CreateXMLDocumentHandler(long long maxTotalSize, long long maxNodeCount,
                                     long long maxDepth) {
    return new XMLDocHandlerImpl(maxTotalSize, maxNodeCount, maxDepth);
}

}  // namespace Saml::Xml
