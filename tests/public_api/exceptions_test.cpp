#include "token_service.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <list>
#include <set>
#include <typeinfo>

using namespace Saml;
using namespace Saml::Xml;
using namespace Saml::Xml::Security;

namespace {

using Action = std::function<void()>;

template <class Base>
bool IsCaughtAs(const Action& action) {
    try {
        action();
    } catch (const Base&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

template <class Base>
void ExpectCaughtAs(const Action& action) {
    EXPECT_TRUE(IsCaughtAs<Base>(action)) << typeid(Base).name();
}

// Whatever `action` throws is of exactly the class `Thrown`, and each base catches it.
template <class Thrown, class... Bases>
void ExpectCaught(const Action& action) {
    try {
        action();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::exception& caught) {
        EXPECT_EQ(typeid(caught), typeid(Thrown)) << caught.what();
    }
    ExpectCaughtAs<Thrown>(action);
    (ExpectCaughtAs<Bases>(action), ...);
    ExpectCaughtAs<Exception>(action);
    ExpectCaughtAs<std::exception>(action);
}

template <class Thrown>
Action Throwing() {
    return [] { throw Thrown("text"); };
}

class Offers : public KeyInfoResolver {
  public:
    explicit Offers(std::list<ByteBlob> keys) : keys_(std::move(keys)) {}
    void Resolve(KeyInfo*, std::list<ByteBlob>& keys) override { keys = keys_; }

  private:
    std::list<ByteBlob> keys_;
};

ByteBlob Garbage() {
    return std::make_shared<const std::vector<unsigned char>>(10, static_cast<unsigned char>(7));
}

// A signature over a small document, whose parts each test spoils in its own way.
struct SignedThing {
    explicit SignedThing(const std::string& xml = "<a ID='x'><b ID='x'/></a>")
        : document(ParseDocument(xml)) {}

    void AddSignature(const std::string& uri, const std::string& digestMethod,
                      const std::string& signatureMethod) {
        CreateBlankSignature(document->GetRootElement(), Algorithm::ExclusiveC14N, signatureMethod,
                             "", signature);
        document->GetRootElement()->AppendChild(signature->GetElement());
        signature->AddReference(uri, digestMethod, reference);
        reference->AddEnvelopedSignatureTransform();
        reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    }

    boost::intrusive_ptr<Document> document;
    boost::intrusive_ptr<Signature> signature;
    boost::intrusive_ptr<SignatureReference> reference;
};

boost::intrusive_ptr<KeyInfoResolver> Trusting(const ByteBlob& certificate) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({certificate}, resolver);
    return resolver;
}

TEST(TokenExceptions, OfTheLibraryAreCaughtByEachOfTheirBases) {
    const TokenService service;
    const auto resolver = Trusting(service.certificate());
    ExpectCaught<ParseException, InvalidTokenException, SsoException>(
        [&] { CreateSamlToken("<a/>", resolver.get()); });

    const auto stranger = Trusting(TokenService().certificate());
    const std::string token = service.Issue();
    ExpectCaught<InvalidSignatureException, InvalidTokenException, SsoException>(
        [&] { CreateSamlToken(token, stranger.get()); });
}

TEST(TokenExceptions, OfTheCallerAreCaughtByEachOfTheirBases) {
    ExpectCaught<SsoException>(Throwing<SsoException>());
    ExpectCaught<InvalidTokenException, SsoException>(Throwing<InvalidTokenException>());
    ExpectCaught<InvalidSignatureException, InvalidTokenException, SsoException>(
        Throwing<InvalidSignatureException>());
    ExpectCaught<ParseException, InvalidTokenException, SsoException>(Throwing<ParseException>());
}

TEST(TokenExceptions, DoNotCatchWhatIsOutsideTheirFamily) {
    EXPECT_FALSE(IsCaughtAs<SsoException>(Throwing<CryptoException>()));
    EXPECT_FALSE(IsCaughtAs<SsoException>([] { ParseDocument("<a>"); }));
    EXPECT_FALSE(IsCaughtAs<XmlSecurityException>([] {
        ByteBlob key;
        PrivateKeyPEMToBlob("no key", key);
    }));
}

TEST(GeneralExceptions, OfTheLibraryAreCaughtByEachOfTheirBases) {
    ExpectCaught<InvalidArgumentException>([] { CreateSamlToken("<a/>", nullptr); });
    ExpectCaught<TypeMismatchException>([] {
        const boost::intrusive_ptr<TextNode> text(CreateTextNode());
        boost::intrusive_ptr<Canonicalizer> canonicalizer;
        CreateCanonicalizer(Algorithm::ExclusiveC14N, canonicalizer);
        StringWriter out;
        canonicalizer->Canonicalize(text.get(), out);
    });
}

TEST(GeneralExceptions, OfTheCallerAreCaughtByEachOfTheirBases) {
    ExpectCaught<Exception>(Throwing<Exception>());
    ExpectCaught<InvalidArgumentException>(Throwing<InvalidArgumentException>());
    ExpectCaught<InternalErrorException>(Throwing<InternalErrorException>());
    ExpectCaught<TypeMismatchException>(
        [] { throw TypeMismatchException(typeid(int), typeid(double)); });
}

TEST(XmlExceptions, OfTheLibraryAreCaughtByEachOfTheirBases) {
    ExpectCaught<XMLParseException>([] { ParseDocument("<a>"); });
    // A parser turns this one into its own; a handler that is driven by hand shows it.
    ExpectCaught<ParsingAbortedException>([] {
        const boost::intrusive_ptr<XMLHandler> handler(CreateXMLDocumentHandler(0, 0, 0));
        boost::intrusive_ptr<Node> document;
        handler->StartDocument(true, document);
        const char* none[] = {nullptr};
        handler->StartElement("a", 1, 0, none);
    });
}

TEST(XmlExceptions, KeepTheLineAcrossTheBorder) {
    try {
        ParseDocument("<a>\n<b>\n</a>");
        FAIL() << "nothing was thrown";
    } catch (const XMLParseException& caught) {
        EXPECT_EQ(caught.line, 3U);
    }
}

TEST(XmlExceptions, OfTheCallerAreCaughtByEachOfTheirBases) {
    ExpectCaught<XMLParseException>([] { throw XMLParseException("text", 1); });
    ExpectCaught<ParsingAbortedException>([] { throw ParsingAbortedException(); });
}

TEST(SignatureExceptions, OfTheLibraryAreCaughtByEachOfTheirBases) {
    ExpectCaught<CryptoException>([] {
        ByteBlob key;
        PrivateKeyPEMToBlob("no key", key);
    });
    ExpectCaught<UnsupportedCanonicalizationException, XmlSecurityException>([] {
        boost::intrusive_ptr<Canonicalizer> canonicalizer;
        CreateCanonicalizer("unknown", canonicalizer);
    });
    ExpectCaught<SignatureSyntaxException, XmlSecurityException>([] {
        const SignedThing thing;
        boost::intrusive_ptr<Signature> signature;
        CreateSignatureFromDom(thing.document->GetRootElement(), thing.document->GetRootElement(),
                               signature);
    });
}

TEST(SignatureExceptions, OfSigningAreCaughtByEachOfTheirBases) {
    const auto sign = [](const std::string& uri, const std::string& digestMethod,
                         const std::string& signatureMethod) {
        return [=] {
            SignedThing thing;
            thing.AddSignature(uri, digestMethod, signatureMethod);
            thing.signature->Sign(Garbage());
        };
    };
    ExpectCaught<UnsupportedHashAlgorithmException, XmlSecurityException>(
        sign("", "unknown", Algorithm::RsaSha256));
    ExpectCaught<UnsupportedSignAlgorithmException, XmlSecurityException>(
        sign("", Algorithm::Sha256, "unknown"));
    ExpectCaught<SignatureGenerationException, XmlSecurityException>(
        sign("", Algorithm::Sha256, Algorithm::RsaSha256));
    ExpectCaught<MissingReferentException, XmlSecurityException>(
        sign("#nowhere", Algorithm::Sha256, Algorithm::RsaSha256));
    ExpectCaught<DuplicateURIException, XmlSecurityException>(
        sign("#x", Algorithm::Sha256, Algorithm::RsaSha256));
}

TEST(SignatureExceptions, OfVerificationAreCaughtByEachOfTheirBases) {
    const TokenService service;
    SignedThing thing;
    thing.AddSignature("", Algorithm::Sha256, Algorithm::RsaSha256);
    thing.signature->Sign(service.privateKey());
    const std::set<std::string> nothingRequired;

    const boost::intrusive_ptr<Offers> nothing(new Offers({}));
    ExpectCaught<SignatureVerificationException, XmlSecurityException>(
        [&] { thing.signature->Verify(nothing.get(), nothingRequired); });

    const boost::intrusive_ptr<Offers> garbage(new Offers({Garbage()}));
    ExpectCaught<SignatureVerificationException, XmlSecurityException>(
        [&] { thing.signature->Verify(garbage.get(), nothingRequired); });
}

TEST(SignatureExceptions, OfTheCallerAreCaughtByEachOfTheirBases) {
    ExpectCaught<CryptoException>(Throwing<CryptoException>());
    ExpectCaught<XmlSecurityException>(Throwing<XmlSecurityException>());
    ExpectCaught<UnsupportedCanonicalizationException, XmlSecurityException>(
        Throwing<UnsupportedCanonicalizationException>());
    ExpectCaught<UnsupportedHashAlgorithmException, XmlSecurityException>(
        Throwing<UnsupportedHashAlgorithmException>());
    ExpectCaught<UnsupportedSignAlgorithmException, XmlSecurityException>(
        Throwing<UnsupportedSignAlgorithmException>());
    ExpectCaught<SignatureSyntaxException, XmlSecurityException>(
        Throwing<SignatureSyntaxException>());
    ExpectCaught<SignatureGenerationException, XmlSecurityException>(
        Throwing<SignatureGenerationException>());
    ExpectCaught<SignatureVerificationException, XmlSecurityException>(
        Throwing<SignatureVerificationException>());
    ExpectCaught<MissingReferentException, XmlSecurityException>(
        Throwing<MissingReferentException>());
    ExpectCaught<DuplicateURIException, XmlSecurityException>(Throwing<DuplicateURIException>());
}

}  // namespace
