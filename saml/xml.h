/// \file
/// The XML document model, the parser that builds it, and the functions that walk it.
#pragma once

#include "saml/foundations.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Saml::Xml {

class ElementNode;

/// What `Node::GetType` answers.
namespace NodeType {
constexpr std::int32_t Document = 0;               ///< A `Document`.
constexpr std::int32_t Text = 1;                   ///< A `TextNode`.
constexpr std::int32_t CData = 2;                  ///< A `CDataNode`.
constexpr std::int32_t Comment = 3;                ///< A `CommentNode`.
constexpr std::int32_t Element = 4;                ///< An `ElementNode`.
constexpr std::int32_t ProcessingInstruction = 5;  ///< A `ProcessingInstructionNode`.
}  // namespace NodeType

/// A name as Namespaces in XML 1.0 defines it: namespace URI (empty: no namespace) and local part.
struct ExpandedName {
    std::string namespaceUri;  ///< Empty for no namespace.
    std::string localName;     ///< The name without its prefix.
};

/// A node of a document tree.
///
/// A node is created detached and lives as long as any intrusive pointer to it; a parent owns its
/// children, a child refers to its parent without owning it. Raw pointers handed out are borrowed
/// and stay valid while their tree lives unchanged. When a parent dies, a child that is still held
/// becomes a detached tree of its own. Only the library's own classes may stand in a tree.
///
/// Texts are UTF-8 bytes as given; nothing is normalised. No operation recurses, so trees may be as
/// deep as memory allows.
///
/// Threads: reference counts are atomic, so a node may be released on any thread. A tree is changed
/// by one thread at a time; an unchanging tree may be read by many.
class SAMLTOKEN_API Node : public boost::intrusive_ref_counter<Node, boost::thread_safe_counter> {
  public:
    virtual ~Node();

    /// Null for a detached node and for a document.
    virtual Node* GetParent() = 0;
    /// Null when there is none; so the next three.
    virtual Node* GetFirstChild() = 0;
    /// The last child.
    virtual Node* GetLastChild() = 0;
    /// The child of the same parent that follows.
    virtual Node* GetNextSibling() = 0;
    /// The child of the same parent that comes before.
    virtual Node* GetPreviousSibling() = 0;

    /// Makes `child` the last child of this node, taking it from its old parent if it has one.
    ///
    /// A failing call changes nothing.
    /// \throws InvalidArgumentException  `child` is null, is this node or an ancestor of it, or its
    ///         kind may not stand under this node: a document takes comments, processing
    ///         instructions and one element; an element takes elements, texts, CDATA sections and
    ///         comments; a CDATA section takes texts; the other kinds take nothing.
    /// \throws TypeMismatchException  `child` is not of the library's own classes.
    virtual void AppendChild(Node* child) = 0;
    /// As `AppendChild`, placing `newChild` directly after `refChild`. When both are the same node
    /// it stays where it is.
    /// \throws InvalidArgumentException  Also when `refChild` is null or no child of this node.
    virtual void InsertAfter(Node* newChild, Node* refChild) = 0;
    /// As `InsertAfter`, placing `newChild` directly before `refChild`.
    virtual void InsertBefore(Node* newChild, Node* refChild) = 0;
    /// Detaches `child`, which must be a child of this node: that is not checked. The child is
    /// destroyed unless the caller holds a pointer to it.
    /// \throws InvalidArgumentException  `child` is null.
    /// \throws TypeMismatchException     `child` is not of the library's own classes.
    virtual void RemoveChild(Node* child) = 0;

    /// One of the `NodeType` codes.
    virtual std::int32_t GetType() = 0;

    /// Writes this node and its descendants as XML text on one line.
    ///
    /// This is a text for people and for storage, not a canonical form, and it loses things:
    /// comments and processing instructions are left out, control characters other than tab, line
    /// feed and carriage return become a per cent sign and two hexadecimal digits. A document
    /// writes nothing: write its root element.
    virtual void Write(Writer& out) = 0;
    /// As `Write`, with two blanks of indentation a level for elements whose first child is an
    /// element or a comment. No line break follows the last end tag.
    virtual void WriteFormatted(Writer& out) = 0;

    /// The first child element with this local name, whatever its namespace; null if none.
    virtual ElementNode* GetFirstChildElement(const std::string& localName) = 0;
    /// The first following sibling element with this local name; null if none.
    virtual ElementNode* GetNextSiblingElement(const std::string& localName) = 0;
    /// The first child element with this local name whose prefix is bound to the namespace, by a
    /// declaration of its own or else by the nearest ancestor's; null if none.
    virtual ElementNode* GetFirstChildElement(const ExpandedName& name) = 0;
    /// The same search among the following siblings.
    virtual ElementNode* GetNextSiblingElement(const ExpandedName& name) = 0;

    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

  protected:
    Node();
};

/// A run of character data.
class SAMLTOKEN_API TextNode : public virtual Node {
  public:
    ~TextNode() override;
    /// The characters, entities already replaced.
    virtual const std::string& GetText() = 0;
    /// Replaces the characters; they are escaped when they are written.
    virtual void SetText(const std::string& text) = 0;
    /// Appends `length` bytes; a `length` below 1 appends nothing.
    virtual void AppendText(const char* data, int length) = 0;

  protected:
    TextNode();
};

/// A CDATA section; its content is held as text children.
class SAMLTOKEN_API CDataNode : public virtual Node {
  public:
    ~CDataNode() override;

  protected:
    CDataNode();
};

/// A comment.
class SAMLTOKEN_API CommentNode : public virtual Node {
  public:
    ~CommentNode() override;
    /// What stands between the delimiters.
    virtual const std::string& GetText() = 0;
    /// Replaces it; not checked for the delimiters, since comments are not written.
    virtual void SetText(const std::string& text) = 0;

  protected:
    CommentNode();
};

/// A processing instruction.
class SAMLTOKEN_API ProcessingInstructionNode : public virtual Node {
  public:
    ~ProcessingInstructionNode() override;
    /// The name at its start.
    virtual const std::string& GetTarget() = 0;
    /// Replaces the name.
    virtual void SetTarget(const std::string& target) = 0;
    /// What follows the name, without the blanks between; may be empty.
    virtual const std::string& GetData() = 0;
    /// Replaces what follows the name.
    virtual void SetData(const std::string& data) = 0;

  protected:
    ProcessingInstructionNode();
};

/// An element. Namespace declarations are ordinary attributes, resolved on demand by walking up the
/// parents. Attributes have names as written, prefix included, and are ordered by the bytes of
/// their names.
class SAMLTOKEN_API ElementNode : public virtual Node {
  public:
    using Node::AppendChild;

    ~ElementNode() override;

    /// Typed shortcuts with the effect of `Node::AppendChild`.
    virtual void AppendChild(TextNode* child) = 0;
    /// The same for an element.
    virtual void AppendChild(ElementNode* child) = 0;

    /// Empty for an element without prefix.
    virtual const std::string& GetPrefix() = 0;
    /// Changes the prefix and nothing else: who needs a declaration of it adds that attribute.
    virtual void SetPrefix(const std::string& prefix) = 0;
    /// The name without its prefix.
    virtual const std::string& GetLocalName() = 0;
    /// Changes the name behind the prefix.
    virtual void SetLocalName(const std::string& localName) = 0;
    /// "prefix:local", or the local name alone when the prefix is empty.
    virtual std::string GetQualifiedName() = 0;
    /// The URI bound to the prefix (empty when none is) and the local name.
    virtual ExpandedName GetExpandedName() = 0;

    /// Where the start tag stood in the parsed text, lines counted from 1, columns from 0; -1 for
    /// an element made by `CreateElementNode`.
    virtual std::int32_t GetLine() = 0;
    /// The column of that place.
    virtual std::int32_t GetColumn() = 0;

    /// Looks up the attribute with this written name.
    /// \return False when there is none; `value` is then untouched.
    virtual bool GetAttribute(const std::string& name, std::string& value) = 0;
    /// Looks up an attribute by namespace and local part; an attribute without prefix is in no
    /// namespace, one with an unbound prefix neither. The first one in name order is found.
    /// \return False when there is none; `value` is then untouched.
    virtual bool GetAttribute(const ExpandedName& name, std::string& value) = 0;
    /// Replaces `out` by a copy of all attributes.
    virtual void GetAttributes(std::map<std::string, std::string>& out) = 0;
    /// Inserts or overwrites. Nothing is changed when memory is short.
    virtual void SetAttribute(const std::string& name, const std::string& value) = 0;
    /// \return True when there was such an attribute.
    /// \throws std::bad_alloc  When the attributes are still as a parser reported them, and memory
    ///                         is short; nothing is changed then.
    virtual bool RemoveAttribute(const std::string& name) = 0;

    /// Finds the URI that this element or the nearest ancestor element binds to `prefix` (empty:
    /// the default namespace). No prefix is predefined, `xml` neither. An empty default declaration
    /// is found, with an empty URI.
    /// \return False when there is none; `uri` is then untouched.
    virtual bool LookupNamespaceURI(const std::string& prefix, std::string& uri) = 0;

  protected:
    ElementNode();
};

/// A document: comments, processing instructions and at most one element.
class SAMLTOKEN_API Document : public virtual Node {
  public:
    ~Document() override;

    /// Null when there is none.
    virtual ElementNode* GetRootElement() = 0;
    /// Puts `root` at the old root's place, or last when there was none; null only removes. Both
    /// nodes survive the call whoever owned them before.
    /// \throws InvalidArgumentException, TypeMismatchException  As `AppendChild`; nothing changes.
    virtual void SetRootElement(ElementNode* root) = 0;
    /// What the XML declaration said; empty without one.
    virtual const std::string& GetVersion() = 0;
    /// Replaces it.
    virtual void SetVersion(const std::string& version) = 0;
    /// What the XML declaration said; empty when it said nothing of it. Texts are UTF-8 all the
    /// same.
    virtual const std::string& GetEncoding() = 0;
    /// Replaces it; nothing is converted.
    virtual void SetEncoding(const std::string& encoding) = 0;

  protected:
    Document();
};

/// The factories give a new, empty, detached node with a reference count of zero: adopt it at once,
/// as in `boost::intrusive_ptr<Document> document(CreateDocument());`.
SAMLTOKEN_API Document* CreateDocument();
/// An element without attributes; `prefix` may be empty.
SAMLTOKEN_API ElementNode* CreateElementNode(const std::string& prefix,
                                             const std::string& localName);
/// An empty text.
SAMLTOKEN_API TextNode* CreateTextNode();
/// An empty section.
SAMLTOKEN_API CDataNode* CreateCDataNode();
/// An empty comment.
SAMLTOKEN_API CommentNode* CreateCommentNode();
/// A processing instruction without target and data.
SAMLTOKEN_API ProcessingInstructionNode* CreateProcessingInstructionNode();

/// Receives the events of a parser, one call an event. What an implementation throws does not reach
/// the caller of the parser: it stops the parse, which then reports an `XMLParseException`, and no
/// further event of that document arrives. Only `StartDocument` may throw to the caller.
/// Threads: serves one parse at a time.
class SAMLTOKEN_API XMLHandler
    : public boost::intrusive_ref_counter<XMLHandler, boost::thread_safe_counter> {
  public:
    virtual ~XMLHandler();

    /// A processing instruction.
    virtual void ProcessingInstruction(const std::string& target, const std::string& data) = 0;
    /// \param line        Counted from 1.
    /// \param column      Counted from 0.
    /// \param attributes  Names and values in turn, in document order, ended by a null pointer;
    ///                    values are unescaped and normalised. Borrowed for the call.
    virtual void StartElement(const std::string& qualifiedName, unsigned line, unsigned column,
                              const char** attributes) = 0;
    /// The end of the element that was opened last and is not closed yet.
    virtual void EndElement(const std::string& qualifiedName) = 0;
    /// A CDATA section begins; its characters follow.
    virtual void StartCData() = 0;
    /// The CDATA section ends.
    virtual void EndCData() = 0;
    /// A comment.
    virtual void Comment(const std::string& text) = 0;
    /// A run of character data, not terminated; one text may come in several runs.
    virtual void Characters(const char* data, int length) = 0;
    /// Either text is empty when the declaration lacks it.
    virtual void XmlDeclaration(const std::string& version, const std::string& encoding) = 0;
    /// Begins a new document and hands it out.
    virtual void StartDocument(bool enforceLimits, boost::intrusive_ptr<Node>& document) = 0;
    /// As above, without limits.
    virtual void StartDocument(boost::intrusive_ptr<Node>& document) = 0;
    /// Forgets the document; called once after every parse, failed ones included. What it throws is
    /// dropped.
    virtual void Reset() = 0;

    XMLHandler(const XMLHandler&) = delete;
    XMLHandler& operator=(const XMLHandler&) = delete;

  protected:
    XMLHandler();
};

/// Parses XML 1.0 texts, one after the other, into the documents that its handler builds.
///
/// Entities of an internal DTD subset are expanded unless limits are enforced; nothing external is
/// ever opened. Comments and processing instructions of the internal subset become children of the
/// document. White space outside the root and the DOCTYPE itself leave no trace. A processing
/// instruction inside an element is refused.
///
/// Threads: serves one parse at a time; separate parsers with separate handlers are independent.
class SAMLTOKEN_API XMLParser
    : public boost::intrusive_ref_counter<XMLParser, boost::thread_safe_counter> {
  public:
    virtual ~XMLParser();

    /// Parses a text of at most 2^31 - 1 bytes.
    ///
    /// \param enforceLimits  True: the handler's limits hold and entity declarations are refused.
    ///                       False: neither; bound the size of untrusted text yourself.
    /// \param document       Receives the new document on success; unchanged on failure.
    /// \throws XMLParseException         The text is refused, with the line where that was noticed.
    /// \throws InvalidArgumentException  The text is longer than 2^31 - 1 bytes.
    virtual void Parse(const std::string& text, bool enforceLimits,
                       boost::intrusive_ptr<Node>& document) = 0;
    /// Parses what `input` gives, 10240 bytes at a time. What `input` throws passes unchanged.
    /// \throws InvalidArgumentException  `input` returned more than it was asked for or a negative
    ///                                   number other than -1.
    virtual void Parse(Reader& input, bool enforceLimits, boost::intrusive_ptr<Node>& document) = 0;
    /// The same two without limits.
    virtual void Parse(const std::string& text, boost::intrusive_ptr<Node>& document) = 0;
    /// The same from a reader.
    virtual void Parse(Reader& input, boost::intrusive_ptr<Node>& document) = 0;

    /// Replaces the handler, which the parser keeps alive.
    /// \throws InvalidArgumentException  `handler` is null.
    virtual void SetHandler(XMLHandler* handler) = 0;
    /// The handler of the next parse; borrowed.
    virtual XMLHandler* GetHandler() = 0;

    XMLParser(const XMLParser&) = delete;
    XMLParser& operator=(const XMLParser&) = delete;

  protected:
    XMLParser();
};

/// A new parser bound to `handler`, with a reference count of zero: adopt it at once.
/// \throws InvalidArgumentException  `handler` is null.
SAMLTOKEN_API XMLParser* CreateXMLParser(XMLHandler* handler);

/// A new handler that builds a `Document`, with a reference count of zero: adopt it at once.
///
/// The limits hold only for parses with `enforceLimits` true; a negative limit then refuses
/// everything.
/// \param maxTotalSize  Bytes of names, values and character data together.
/// \param maxNodeCount  Nodes.
/// \param maxDepth      Open ancestors of any node, leaves included.
SAMLTOKEN_API XMLHandler* CreateXMLDocumentHandler(long long maxTotalSize, long long maxNodeCount,
                                                   long long maxDepth);

/// The first element among `node` and its following siblings, passing over elements that are nil
/// (`IsNil`): an optional element sent as nil reads as missing. Null for null.
SAMLTOKEN_API ElementNode* GetFirstSiblingElement(Node* node);
/// The same search among the children of `node`.
SAMLTOKEN_API ElementNode* GetFirstChildElement(Node* node);
/// The same search behind `node`.
SAMLTOKEN_API ElementNode* GetNextSiblingElement(Node* node);

/// The namespace of `element`: what is bound to its own prefix.
/// \return False when nothing is bound or `element` is null; `uri` is then untouched.
SAMLTOKEN_API bool GetNamespace(ElementNode* element, std::string& uri);

/// Follows a path of steps separated by "/" and gives the value at its end.
///
/// The first step names `start` itself. A step is a local name or "*" for any element, or "@" with
/// an attribute name as written, which ends the path. An element's value is its first child's text
/// when that child is a text. Each step takes the first match and does not go back.
/// \return False when the path leads nowhere or has no step; `value` is then untouched.
SAMLTOKEN_API bool EvaluateSimplePath(ElementNode* start, const std::string& path,
                                      std::string& value);
/// The same from the root element of `document`.
/// \throws InvalidArgumentException  "Document has no root.", for a null document, too.
SAMLTOKEN_API bool EvaluateSimplePath(Document* document, const std::string& path,
                                      std::string& value);
/// Follows every match at every step and gives all values in document order.
/// \param values  Replaced.
/// \return True when there is at least one value.
SAMLTOKEN_API bool EvaluateMultiPath(ElementNode* start, const std::string& path,
                                     std::vector<std::string>& values);
/// The same from the root element of `document`.
/// \throws InvalidArgumentException  "Document has no root.", for a null document, too.
SAMLTOKEN_API bool EvaluateMultiPath(Document* document, const std::string& path,
                                     std::vector<std::string>& values);

/// True when the attribute written `xsi:nil`, or else `xsi:null`, is "true" or "1". The prefix is
/// taken by the letter. False for null.
SAMLTOKEN_API bool IsNil(ElementNode* element);

/// Accepts every text, null included: URIs read from tokens have no imposed syntax.
SAMLTOKEN_API void ValidateAnyURI(const char* uri);

}  // namespace Saml::Xml
