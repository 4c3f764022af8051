#pragma once

#include <map>
#include <string>
#include <vector>

/// The accepted profile of assertions and of their signatures, as data. `grammar_reading.h` reads
/// by it.
namespace Oracle::Grammar {

/// Whose words a refusal is made of.
enum class Wording { Token, Signature };

enum class Presence { Required, Optional };
enum class Value { Any, Date, Count };
struct AttributeRow {
    const char* name;
    Presence presence = Presence::Required;
    Value value = Value::Any;
};

enum class Attributes {
    Plain,     ///< The listed ones, by their written names.
    WithType,  ///< The same, and `kType` by its namespace, whatever its prefix; worded otherwise.
    AtLeast,   ///< The listed ones and any other.
    NotExamined,
};

enum class Content {
    Children,   ///< Those listed, in their order.
    AnyOrder,   ///< Those listed, each at most once.
    Selected,   ///< Those listed, anywhere between others that are passed over.
    Text,       ///< One run of characters.
    Base64,     ///< The same, decoded.
    MaybeText,  ///< The same or nothing.
    Nothing,
    NotExamined,
};

enum class Card {
    Once,
    IfNamed,    ///< Once when the next child has this name and namespace.
    IfPresent,  ///< Once when there is a next child, whatever it is.
    OneOrMore,  ///< All that is left.
    Any,        ///< All that is left, maybe nothing.
};
struct ChildRow {
    const char* key;
    Card card = Card::Once;
    /// Said when there is no element at the place; null for the usual words.
    const char* whenNoElement = nullptr;
};

/// Tells the rows of one key apart by an attribute's value.
struct Choice {
    const char* attribute = nullptr;
    const char* value = nullptr;
    const char* otherwiseBefore = nullptr;  ///< Said of any other value, which stands
    const char* otherwiseBehind = nullptr;  ///< between the two.
};

/// What the `xsi:type` of an element names.
struct Type {
    const char* namespaceUri = nullptr;
    const char* localName = nullptr;
    /// Said of any other value, which stands between the two; null where another type is another
    /// row's.
    const char* otherwiseBefore = nullptr;
    const char* otherwiseBehind = nullptr;
};

struct ElementRow {
    const char* key;  ///< By which parents name the row; rows of one key differ by their choice.
    const char* localName;
    const char* namespaceUri;
    Wording wording;
    Attributes rule;
    std::vector<AttributeRow> attributes;
    Content content;
    std::vector<ChildRow> children = {};
    /// Said of what stands behind the last child; null where it is passed over.
    const char* behindLast = nullptr;
    Choice choice = {};
    Type type = {};
};

/// All rows, by their keys.
const std::map<std::string, std::vector<ElementRow>>& Rows();
/// The rows of this key; at least one.
const std::vector<ElementRow>& RowsOf(const std::string& key);

/// The name of `xsi:type` in the rows.
constexpr char kType[] = "xsi:type";

extern const char* const kAssertionNamespace;
extern const char* const kDelegationNamespace;
extern const char* const kSignatureNamespace;
extern const char* const kInstanceNamespace;
extern const char* const kExclusiveC14N;
extern const char* const kEnvelopedSignature;

}  // namespace Oracle::Grammar
