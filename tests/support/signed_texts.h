#pragma once

#include "support/hand_signed.h"
#include "support/signature_texts.h"
#include "support/thrown.h"

#include <gtest/gtest.h>

#include <list>
#include <set>
#include <string>
#include <utility>

/// A small document that is signed without the library, and what `Verify` says to it.
namespace Saml::Xml::Security {

using HandSigned::PresetResolver;
using HandSigned::Reference;
using HandSigned::Signed;
using HandSigned::SignedInfo;
using HandSigned::UsualKey;
using ResolverPtr = boost::intrusive_ptr<PresetResolver>;
using URIs = std::set<std::string>;

constexpr char kA[] = "<a ID=\"a\">one<x ID=\"x\"></x></a>";
constexpr char kB[] = "<b ID=\"b\">two</b>";

/// A root that holds two elements and a signature.
inline std::string SignedText(const std::string& signature) {
    return std::string("<root ID=\"r\">") + kA + kB + signature + "</root>";
}
/// What an enveloped signature of that root covers.
inline std::string RootWithoutSignature() {
    return SignedText("");
}

inline std::string GoodRoot() {
    return Reference({"", RootWithoutSignature()});
}
inline std::string GoodA() {
    return Reference({"#a", kA});
}
inline std::string GoodB() {
    return Reference({"#b", kB});
}
inline std::string WrongA() {
    return Reference({"#a", "<a></a>"});
}
inline std::string Missing() {
    return Reference({"#nowhere", ""});
}

inline ResolverPtr Offering(std::list<ByteBlob> keys) {
    return ResolverPtr(new PresetResolver(std::move(keys)));
}
inline ResolverPtr OfferingTheSignersKey() {
    return Offering({UsualKey().publicKey});
}

/// `Verify` of the signature in the document of `text`.
inline bool Verifies(const std::string& text, KeyInfoResolver& resolver,
                     const URIs& required = {}) {
    const Held<Document> document = Parsed(text);
    return SignatureOf(*document)->Verify(&resolver, required);
}
inline bool Verifies(const std::string& text, const URIs& required = {}) {
    return Verifies(text, *OfferingTheSignersKey(), required);
}

/// `Verify` of a document with these references gives false and asks for no key.
inline void ExpectRefusedUnasked(const std::string& references, const URIs& required = {}) {
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_FALSE(Verifies(SignedText(Signed(references)), *resolver, required));
    EXPECT_EQ(resolver->asked, 0);
}

/// The message with which `Verify` of a document with these references throws, asking for no key.
template <class Expected>
std::string RefusalOf(const std::string& references, const URIs& required = {}) {
    const ResolverPtr resolver = OfferingTheSignersKey();
    const std::string text = SignedText(Signed(references));
    const std::string message = MessageOf<Expected>([&] { Verifies(text, *resolver, required); });
    EXPECT_EQ(resolver->asked, 0);
    return message;
}

}  // namespace Saml::Xml::Security
