#include "saml/xml.h"

// The interfaces' constructors and destructors stand here so that their type information is emitted
// once, in the library: that is what lets callers cast and catch across its border.
namespace Saml::Xml {

Node::Node() = default;
Node::~Node() = default;

TextNode::TextNode() = default;
TextNode::~TextNode() = default;

CDataNode::CDataNode() = default;
CDataNode::~CDataNode() = default;

CommentNode::CommentNode() = default;
CommentNode::~CommentNode() = default;

ProcessingInstructionNode::ProcessingInstructionNode() = default;
ProcessingInstructionNode::~ProcessingInstructionNode() = default;

ElementNode::ElementNode() = default;
ElementNode::~ElementNode() = default;

Document::Document() = default;
Document::~Document() = default;

XMLHandler::XMLHandler() = default;
XMLHandler::~XMLHandler() = default;

XMLParser::XMLParser() = default;
XMLParser::~XMLParser() = default;

}  // namespace Saml::Xml
