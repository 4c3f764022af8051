#include "saml/foundations.h"
#include "saml/foundations/platform.h"
#include "support/thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace Saml {
namespace {

using Xml::ParsingAbortedException;
using Xml::XMLParseException;
using namespace Xml::Security;

/// Names the row of a typed test after its class.
template <class Class>
std::string UnqualifiedName() {
    const std::string name = ReadableTypeName(typeid(Class));
    return name.substr(name.rfind(':') + 1);
}

// The tree: each class with the one it derives from. How many classes each family catches shows
// that nothing else lies between the two.
template <class Derived, class Base>
struct Edge {
    using Class = Derived;
    using Parent = Base;
};

template <class... Edges>
struct EdgeList {
    using Types = testing::Types<Edges...>;

    /// How many of the classes `Family` catches, itself included.
    template <class Family>
    static constexpr int kCaughtBy = (0 + ... +
                                      int{std::is_base_of_v<Family, typename Edges::Class>});
};

template <class Pair>
class ExceptionTree : public testing::Test {};

using Tree =
    EdgeList<Edge<Exception, std::exception>, Edge<SsoException, Exception>,
             Edge<InvalidTokenException, SsoException>,
             Edge<InvalidSignatureException, InvalidTokenException>,
             Edge<ParseException, InvalidTokenException>, Edge<TypeMismatchException, Exception>,
             Edge<InvalidArgumentException, Exception>, Edge<InternalErrorException, Exception>,
             Edge<XMLParseException, Exception>, Edge<ParsingAbortedException, Exception>,
             Edge<CryptoException, Exception>, Edge<XmlSecurityException, Exception>,
             Edge<UnsupportedCanonicalizationException, XmlSecurityException>,
             Edge<UnsupportedHashAlgorithmException, XmlSecurityException>,
             Edge<UnsupportedSignAlgorithmException, XmlSecurityException>,
             Edge<SignatureSyntaxException, XmlSecurityException>,
             Edge<SignatureGenerationException, XmlSecurityException>,
             Edge<SignatureVerificationException, XmlSecurityException>,
             Edge<MissingReferentException, XmlSecurityException>,
             Edge<DuplicateURIException, XmlSecurityException>>;
struct EdgeName {
    template <class Pair>
    static std::string GetName(int) {
        return UnqualifiedName<typename Pair::Class>();
    }
};
TYPED_TEST_SUITE(ExceptionTree, Tree::Types, EdgeName);

TYPED_TEST(ExceptionTree, DerivesPubliclyFromItsParent) {
    using Class = typename TypeParam::Class;
    using Parent = typename TypeParam::Parent;
    EXPECT_TRUE((std::is_convertible_v<Class*, Parent*>));
    EXPECT_TRUE((std::is_convertible_v<Class*, std::exception*>));
}

TYPED_TEST(ExceptionTree, IsAValueThatCanBeCopiedAndAssigned) {
    using Class = typename TypeParam::Class;
    EXPECT_TRUE(std::is_copy_constructible_v<Class>);
    EXPECT_TRUE(std::is_copy_assignable_v<Class>);
    EXPECT_TRUE(std::is_nothrow_destructible_v<Class>);
}

TEST(ExceptionFamilies, CatchTheirOwnClassesAndNoOthers) {
    EXPECT_EQ(Tree::kCaughtBy<Exception>, 20);
    EXPECT_EQ(Tree::kCaughtBy<SsoException>, 4);
    EXPECT_EQ(Tree::kCaughtBy<InvalidTokenException>, 3);
    EXPECT_EQ(Tree::kCaughtBy<XmlSecurityException>, 9);
    EXPECT_EQ(Tree::kCaughtBy<InvalidSignatureException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<ParseException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<TypeMismatchException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<InvalidArgumentException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<InternalErrorException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<XMLParseException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<ParsingAbortedException>, 1);
    EXPECT_EQ(Tree::kCaughtBy<CryptoException>, 1);
}

/// True when a handler of `Family` catches what `thrown` is a copy of.
template <class Family, class Thrown>
bool Catches(const Thrown& thrown) {
    try {
        throw Thrown(thrown);
    } catch (const Family&) {
        return true;
    } catch (...) {
        return false;
    }
}

TEST(ExceptionFamilies, TellTokenProblemsFromParserAndCryptographyProblems) {
    EXPECT_TRUE(Catches<SsoException>(ParseException("p")));
    EXPECT_TRUE(Catches<SsoException>(InvalidSignatureException("s")));
    EXPECT_FALSE(Catches<SsoException>(XMLParseException("x", 1)));
    EXPECT_FALSE(Catches<SsoException>(CryptoException("c")));
    EXPECT_FALSE(Catches<XmlSecurityException>(CryptoException("c")));
    EXPECT_FALSE(Catches<XmlSecurityException>(ParseException("p")));
    EXPECT_TRUE(Catches<XmlSecurityException>(DuplicateURIException("d")));
}

// The classes whose constructor takes the message as it is.
template <class Class>
class ExceptionWithMessage : public testing::Test {};

using ClassesWithMessage =
    testing::Types<Exception, SsoException, InvalidTokenException, InvalidSignatureException,
                   ParseException, InvalidArgumentException, InternalErrorException,
                   XmlSecurityException, UnsupportedCanonicalizationException,
                   UnsupportedHashAlgorithmException, UnsupportedSignAlgorithmException,
                   SignatureSyntaxException, SignatureGenerationException,
                   SignatureVerificationException, MissingReferentException, DuplicateURIException>;
struct ClassName {
    template <class Class>
    static std::string GetName(int) {
        return UnqualifiedName<Class>();
    }
};
TYPED_TEST_SUITE(ExceptionWithMessage, ClassesWithMessage, ClassName);

TYPED_TEST(ExceptionWithMessage, StoresTheMessageUnchanged) {
    for (const std::string message : {"", "Element 'x' not found.", "%1% 'ü \n ", " "})
        EXPECT_EQ(MessageOf<TypeParam>([&] { throw TypeParam(message); }), message);
}

TYPED_TEST(ExceptionWithMessage, KeepsTheMessageAfterItsSourceIsGone) {
    std::string message = "a message that is too long to lie within the string object itself";
    const std::string expected = message;
    TypeParam first(message);
    message.assign(message.size(), '?');
    const TypeParam copy(first);
    first = TypeParam("another");
    EXPECT_EQ(copy.what(), expected);
    EXPECT_STREQ(first.what(), "another");
}

TYPED_TEST(ExceptionWithMessage, GivesTheMessageThroughTheStandardException) {
    const TypeParam thrown("message");
    const std::exception& standard = thrown;
    EXPECT_STREQ(standard.what(), "message");
}

TEST(TypeMismatchException, NamesTheExpectedTypeBeforeTheFoundOne) {
    EXPECT_STREQ(TypeMismatchException(typeid(int), typeid(double)).what(),
                 "Type Mismatch: expected: int, found: double");
    EXPECT_STREQ(TypeMismatchException(typeid(ParseException), typeid(CryptoException)).what(),
                 "Type Mismatch: expected: Saml::ParseException, found: "
                 "Saml::Xml::Security::CryptoException");
}

TEST(CryptoException, PutsItsNameBeforeTheDetail) {
    EXPECT_STREQ(CryptoException("error:0906D06C:PEM routines").what(),
                 "Crypto Exception: error:0906D06C:PEM routines");
    EXPECT_STREQ(CryptoException("").what(), "Crypto Exception: ");
    EXPECT_STREQ(CryptoException("Crypto Exception: x").what(),
                 "Crypto Exception: Crypto Exception: x");
}

TEST(CryptoException, DoesNotPrefixACopyAgain) {
    const CryptoException first("detail");
    const CryptoException copy(first);
    EXPECT_STREQ(copy.what(), "Crypto Exception: detail");
}

TEST(XMLParseException, StoresMessageAndLineUnchanged) {
    const XMLParseException thrown("not well-formed (invalid token)", 7);
    EXPECT_STREQ(thrown.what(), "not well-formed (invalid token)");
    EXPECT_EQ(thrown.line, 7u);

    const XMLParseException extreme("", 4294967295u);
    EXPECT_STREQ(extreme.what(), "");
    EXPECT_EQ(extreme.line, 4294967295u);
}

TEST(XMLParseException, CopiesTheLineWithTheMessage) {
    const XMLParseException first("message", 7);
    XMLParseException copy(first);
    EXPECT_STREQ(copy.what(), "message");
    EXPECT_EQ(copy.line, 7u);
    copy = XMLParseException("other", 8);
    EXPECT_STREQ(copy.what(), "other");
    EXPECT_EQ(copy.line, 8u);
}

TEST(ParsingAbortedException, HasNoMessage) {
    EXPECT_STREQ(ParsingAbortedException().what(), "");
    const ParsingAbortedException first;
    const ParsingAbortedException copy(first);
    EXPECT_STREQ(copy.what(), "");
}

}  // namespace
}  // namespace Saml
