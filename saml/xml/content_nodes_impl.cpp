#include "saml/xml/content_nodes_impl.h"

namespace Saml::Xml {

TextNodeImpl::TextNodeImpl(std::string_view text) : NodeImpl(NodeType::Text), text_(text) {}

void TextNodeImpl::AppendText(const char* data, int length) {
    if (length > 0) text_.append(data, static_cast<std::size_t>(length));
}

CDataNodeImpl::CDataNodeImpl() : NodeImpl(NodeType::CData) {}

CommentNodeImpl::CommentNodeImpl(std::string_view text)
    : NodeImpl(NodeType::Comment), text_(text) {}

ProcessingInstructionNodeImpl::ProcessingInstructionNodeImpl(std::string_view target,
                                                             std::string_view data)
    : NodeImpl(NodeType::ProcessingInstruction), target_(target), data_(data) {}

TextNode* CreateTextNode() {
    return new TextNodeImpl;
}

CDataNode* CreateCDataNode() {
    return new CDataNodeImpl;
}

CommentNode* CreateCommentNode() {
    return new CommentNodeImpl;
}

ProcessingInstructionNode* CreateProcessingInstructionNode() {
    return new ProcessingInstructionNodeImpl;
}

}  // namespace Saml::Xml
