// The algorithm that a signature names belongs to the attacker; the one that the key is for does
// not. xmldsig-core 4.4.2 and 6.1; "algorithm confusion" as in CVE-2015-9235 (of another format).
#include "hostile/attacks/hand_made_signature.h"
#include "hostile/attacks/refusals.h"
#include "support/system_policy.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>
#include <openssl/hmac.h>

namespace Saml::Attacks {
namespace {

using namespace std::string_literals;

constexpr char kDsig[] = "http://www.w3.org/2000/09/xmldsig#";
constexpr char kMore[] = "http://www.w3.org/2001/04/xmldsig-more#";

std::string RefusedMethod(const std::string& algorithm) {
    return RefusedVerification("The signature algorithm is not supported: " + algorithm);
}

Signing Hmac(const std::string& digest, const std::string& secret) {
    return [digest, secret](const std::string& signedInfo) {
        unsigned char value[EVP_MAX_MD_SIZE];
        unsigned int size = 0;
        HMAC(EVP_get_digestbyname(digest.c_str()), secret.data(), static_cast<int>(secret.size()),
             reinterpret_cast<const unsigned char*>(signedInfo.data()), signedInfo.size(), value,
             &size);
        return std::string(reinterpret_cast<const char*>(value), size);
    };
}

Attack WithMethod(const std::string& name, const std::string& algorithm, const Signing& sign) {
    HandMadeSignature signature;
    signature.signatureMethod = Method("SignatureMethod", algorithm);
    signature.sign = sign;
    return {name, TokenWith(signature), RefusedMethod(algorithm)};
}

std::string Text(const ByteBlob& bytes) {
    return {bytes->begin(), bytes->end()};
}

// Whoever verifies a MAC with the key that he was given for an RSA signature verifies what anybody
// can make: that key is public.
TEST(SignatureMethods, DoNotMakeASecretOfThePublicKey) {
    const TestKeys::Key& key = TestKeys::KeyNamed("leaf");
    const std::string publicDer = Text(key.publicKey);
    const std::string modulus = publicDer.substr(publicDer.size() - 5 - 128, 128);
    const std::pair<const char*, std::string> secrets[] = {
        {"Pkcs1Der", publicDer},
        {"SubjectPublicKeyInfoDer",
         TestKeys::OpenSsl("pkey -pubout -outform DER -in " + key.pemPath)},
        {"Pem", key.publicPem},
        {"PemWithoutItsLastNewline", key.publicPem.substr(0, key.publicPem.size() - 1)},
        {"Modulus", modulus},
        {"CertificateDer", Text(TestKeys::CertificateNamed("leaf").der)},
        {"CertificatePem", TestKeys::CertificateNamed("leaf").pem},
        {"Nothing", ""},
    };
    std::vector<Attack> attacks;
    for (const auto& [name, secret] : secrets) {
        attacks.push_back(
            WithMethod("HmacSha1With"s + name, kDsig + "hmac-sha1"s, Hmac("SHA1", secret)));
        attacks.push_back(
            WithMethod("HmacSha256With"s + name, kMore + "hmac-sha256"s, Hmac("SHA256", secret)));
    }
    // The same values under the name of the accepted method.
    for (const auto& [name, secret] : secrets) {
        HandMadeSignature signature;
        signature.sign = Hmac("SHA256", secret);
        attacks.push_back({"HmacCalledRsaWith"s + name, TokenWith(signature), RefusedAsTampered()});
    }
    ExpectOutcomes(attacks);
}

// CVE-2009-0217: a length of 0 bits makes every MAC equal.
TEST(SignatureMethods, TakeNoOutputLength) {
    const auto shortened = [](const std::string& algorithm, const char* bits) {
        HandMadeSignature signature;
        signature.signatureMethod =
            Method("SignatureMethod", algorithm,
                   "<ds:HMACOutputLength>"s + bits + "</ds:HMACOutputLength>");
        signature.sign = [](const std::string&) { return "\0"s; };
        return TokenWith(signature);
    };
    const std::string refused =
        RefusedSignatureSyntax("Element 'SignatureMethod' may not have children");
    ExpectOutcomes({
        {"HmacOfNoBits", shortened(kDsig + "hmac-sha1"s, "0"), refused},
        {"HmacOfOneBit", shortened(kDsig + "hmac-sha1"s, "1"), refused},
        {"HmacOfEightBits", shortened(kMore + "hmac-sha256"s, "8"), refused},
        {"HmacOfNegativeBits", shortened(kMore + "hmac-sha256"s, "-1"), refused},
        {"RsaOfEightBits", shortened(kMore + "rsa-sha256"s, "8"), refused},
    });
}

TEST(SignatureMethods, ThatAreNotRsaAreRefused) {
    const Signing rsa = SigningWith("leaf");
    const Signing nobody = [](const std::string&) { return "\0"s; };
    ExpectOutcomes({
        WithMethod("Empty", "", rsa),
        WithMethod("None", "none", nobody),
        WithMethod("NoneAsIdentifier", kDsig + "none"s, nobody),
        WithMethod("Minimal", "http://www.w3.org/2000/09/xmldsig#minimal", nobody),
        WithMethod("RsaMd5", kMore + "rsa-md5"s, SigningWith("leaf", "MD5")),
        WithMethod("RsaRipemd160", kMore + "rsa-ripemd160"s, rsa),
        WithMethod("RsaSha224", kMore + "rsa-sha224"s, SigningWith("leaf", "SHA224")),
        WithMethod("DsaSha1", kDsig + "dsa-sha1"s, rsa),
        WithMethod("DsaSha256", "http://www.w3.org/2009/xmldsig11#dsa-sha256", rsa),
        WithMethod("EcdsaSha256", kMore + "ecdsa-sha256"s, rsa),
        WithMethod("EcdsaSha256ByAnEcKey", kMore + "ecdsa-sha256"s, SigningWith("ec")),
        WithMethod("EdDsa", "http://www.w3.org/2021/04/xmldsig-more#eddsa-ed25519", rsa),
        WithMethod("RsaPss", "http://www.w3.org/2007/05/xmldsig-more#rsa-pss", rsa),
        WithMethod("RsaPssSha256", "http://www.w3.org/2007/05/xmldsig-more#sha256-rsa-MGF1", rsa),
        WithMethod("OnlyADigest", Xml::Security::Algorithm::Sha256, rsa),
        WithMethod("ACanonicalization", Xml::Security::Algorithm::ExclusiveC14N, rsa),
    });
}

// xmldsig-core 4.4.3.1: identifiers compare character by character.
TEST(SignatureMethods, ThatOnlyLookLikeRsaAreRefused) {
    const Signing rsa = SigningWith("leaf");
    const std::string good = Xml::Security::Algorithm::RsaSha256;
    const auto spelled = [&](const char* name, const std::string& from, const std::string& to) {
        return WithMethod(name, Forge::Replaced(good, from, to), rsa);
    };
    ExpectOutcomes({
        spelled("Https", "http:", "https:"),
        spelled("SchemeInCapitals", "http:", "HTTP:"),
        spelled("HostInCapitals", "www.w3.org", "WWW.W3.ORG"),
        spelled("FragmentInCapitals", "rsa-sha256", "RSA-SHA256"),
        spelled("PercentEncodedLetter", "rsa", "%72sa"),
        spelled("PercentEncodedMark", "#", "%23"),
        spelled("CyrillicLetter", "rsa-sha", "rs\xD0\xB0-sha"),
        spelled("FullWidthLetter", "rsa", "\xEF\xBD\x92sa"),
        spelled("ZeroWidthSpace", "rsa-", "rsa\xE2\x80\x8B-"),
        spelled("SoftHyphen", "rsa-", "rsa\xC2\xAD"),
        spelled("WithAPort", "w3.org", "w3.org:80"),
        spelled("WithADotAtTheHostsEnd", "w3.org", "w3.org."),
        spelled("TwoSlashes", "org/2001", "org//2001"),
        spelled("DotSegment", "2001/", "2001/./"),
        spelled("FirstNamespace", "2001/04/xmldsig-more", "2000/09/xmldsig"),
        WithMethod("TrailingSlash", good + "/", rsa),
        WithMethod("TrailingMark", good + "#", rsa),
        WithMethod("TrailingBlank", good + " ", rsa),
        WithMethod("LeadingBlank", " " + good, rsa),
        WithMethod("TrailingNoBreakSpace", good + "\xC2\xA0", rsa),
        WithMethod("OneCharacterMissing", good.substr(0, good.size() - 1), rsa),
        WithMethod("FragmentAlone", "#rsa-sha256", rsa),
        WithMethod("AsAUrn", "urn:" + good, rsa),
        WithMethod("Twice", good + " " + good, rsa),
    });
}

/// Tokens that name each digest and are signed with each, of which `isAsked` tells the wanted ones.
template <class Question>
std::vector<Attack> NamedAndSigned(Question isAsked) {
    const std::pair<std::string, const char*> digests[] = {
        {"SHA1", Xml::Security::Algorithm::RsaSha1},
        {"SHA256", Xml::Security::Algorithm::RsaSha256},
        {"SHA384", Xml::Security::Algorithm::RsaSha384},
        {"SHA512", Xml::Security::Algorithm::RsaSha512},
    };
    const Forge::TokenSpec customer = Provider::CustomerSpec();
    std::vector<Attack> attacks;
    for (const auto& [named, algorithm] : digests)
        for (const std::string real : {"SHA1", "SHA256", "SHA384", "SHA512", "MD5", "SHA224"}) {
            if (!isAsked(named, real)) continue;
            HandMadeSignature signature;
            signature.signatureMethod = Method("SignatureMethod", algorithm);
            signature.sign = SigningWith("leaf", real);
            attacks.push_back({"Named" + named + "Signed" + real, TokenWith(signature, customer),
                               named == real ? Accepted(customer) : RefusedAsTampered()});
        }
    return attacks;
}

// The DigestInfo inside of the RSA block names its digest, too (RFC 8017 section 9.2): what the
// key signed with one digest is not verified with another.
TEST(SignatureMethods, MustNameTheDigestThatTheKeySigned) {
    ExpectOutcomes(NamedAndSigned([](const std::string& named, const std::string& real) {
        return named != "SHA1" && real != "SHA1";
    }));
}

TEST(SignatureMethods, MustNameSha1WhenAndOnlyWhenTheKeySignedWithIt) {
    SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    ExpectOutcomes(NamedAndSigned([](const std::string& named, const std::string& real) {
        return named == "SHA1" || real == "SHA1";
    }));
}

/// RSASSA-PSS (RFC 8017 section 8.1) with SHA-256 and the provider's own key.
std::string SignedByPss(const std::string& signedInfo) {
    const std::string input = TestKeys::PathOf("to-sign-by-pss");
    TestKeys::WriteFile(input, signedInfo);
    return TestKeys::OpenSsl("dgst -sha256 -sigopt rsa_padding_mode:pss -sign " +
                             TestKeys::KeyNamed("leaf").pemPath + " " + input);
}

TEST(SignatureMethods, MustNameTheSchemeThatTheKeySigned) {
    const auto by = [](const Signing& sign) {
        HandMadeSignature signature;
        signature.sign = sign;
        return TokenWith(signature);
    };
    const auto unnamed = [](const std::string& signedInfo) {
        return SigningWith("leaf")(DigestOf("SHA256", signedInfo));
    };
    ExpectOutcomes({
        {"Pss", by(SignedByPss), RefusedAsTampered()},
        {"EllipticCurve", by(SigningWith("ec")), RefusedAsTampered()},
        {"Ed25519", by(SigningWith("ed25519", "")), RefusedAsTampered()},
        {"DigestedTwice", by(unnamed), RefusedAsTampered()},
        {"OnlyTheDigest",
         by([](const std::string& signedInfo) { return DigestOf("SHA256", signedInfo); }),
         RefusedAsTampered()},
        {"OverOtherText", by([](const std::string&) { return SigningWith("leaf")("text"); }),
         RefusedAsTampered()},
        {"OverNothing", by([](const std::string&) { return SigningWith("leaf")(""); }),
         RefusedAsTampered()},
    });
}

TEST(SignatureMethods, AreRequiredOnce) {
    const auto with = [](const std::string& markup) {
        HandMadeSignature signature;
        signature.signatureMethod = markup;
        return TokenWith(signature);
    };
    const std::string good = HandMadeSignature().signatureMethod;
    ExpectOutcomes({
        {"Missing", with(""),
         RefusedSignatureSyntax("Expected element 'SignatureMethod' not found.")},
        {"Twice", with(good + good),
         RefusedSignatureSyntax("Expected element 'Reference' not found.")},
        {"WithoutAlgorithm", with("<ds:SignatureMethod/>"),
         RefusedSignatureSyntax("Node 'SignatureMethod is missing required attribute 'Algorithm'")},
        {"AlgorithmInAnotherCase",
         with("<ds:SignatureMethod algorithm=\""s + Xml::Security::Algorithm::RsaSha256 + "\"/>"),
         RefusedSignatureSyntax("Node 'SignatureMethod is missing required attribute 'Algorithm'")},
        {"WithASecondAlgorithm",
         with("<ds:SignatureMethod Algorithm=\""s + Xml::Security::Algorithm::RsaSha256 +
              "\" ds:Algorithm=\"none\"/>"),
         RefusedSignatureSyntax("Unexpected attributes on element 'SignatureMethod'")},
    });
}

}  // namespace
}  // namespace Saml::Attacks
