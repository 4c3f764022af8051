#include "saml/security/signature_reference_impl.h"
#include "support/signed_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Reference validation as `Signature::Verify` does it, xmldsig-core 3.2.1.
namespace Saml::Xml::Security {
namespace {

TEST(ReferenceValidation, FailsForAlteredContentUnasked) {
    const std::string text = SignedText(Signed(GoodRoot()));
    ASSERT_TRUE(Verifies(text));
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_FALSE(Verifies(Replaced(text, ">two<", ">three<"), *resolver));
    EXPECT_FALSE(Verifies(Replaced(text, kB, std::string(kB) + " "), *resolver));
    EXPECT_FALSE(Verifies(Replaced(text, kB, "<![CDATA[two]]>"), *resolver));
    EXPECT_EQ(resolver->asked, 0);
}

TEST(ReferenceValidation, FailsForAWrongDigestOfAValidSignature) {
    ExpectRefusedUnasked(WrongA());
    ExpectRefusedUnasked(GoodRoot() + WrongA());
    ExpectRefusedUnasked(WrongA() + GoodRoot());
}

TEST(ReferenceValidation, FailsForADigestValueThatIsNoDigest) {
    const std::string digest = HandSigned::DigestValue("sha256", kA);
    const std::string sha1 = HandSigned::DigestValue("sha1", kA);
    for (const std::string& value :
         {std::string("?"), std::string("AAA"), std::string("AA=AA"), digest.substr(0, 40),
          digest.substr(0, 43) + "?", sha1, "AAAA" + digest})
        ExpectRefusedUnasked(Replaced(GoodA(), digest, value));
}

TEST(ReferenceValidation, TakesADigestValueWithBlanksBetweenItsGroups) {
    const std::string digest = HandSigned::DigestValue("sha256", kA);
    const std::string folded = "\n  " + digest.substr(0, 20) + "\n  " + digest.substr(20) + "\n";
    EXPECT_TRUE(Verifies(SignedText(Signed(Replaced(GoodA(), digest, folded)))));
}

TEST(ReferenceValidation, ChecksEveryReferenceAlsoAfterAMismatch) {
    const std::string withoutCanonicalization =
        Replaced(GoodB(),
                 "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\">"
                 "</ds:Transform>",
                 "");
    const std::string unknownDigest =
        Replaced(GoodB(), "http://www.w3.org/2001/04/xmlenc#sha256", "urn:digest");
    EXPECT_EQ(RefusalOf<MissingReferentException>(WrongA() + Missing()),
              "The URI could not be resolved: #nowhere");
    EXPECT_EQ(RefusalOf<UnsupportedCanonicalizationException>(WrongA() + withoutCanonicalization),
              "The following canonicalization method is unsupported: ");
    EXPECT_EQ(RefusalOf<UnsupportedHashAlgorithmException>(WrongA() + unknownDigest),
              "The following hash algorithm is unsupported: urn:digest");
}

TEST(ReferenceValidation, RefusesADuplicateAfterAMismatch) {
    const std::string text =
        Replaced(SignedText(Signed(WrongA() + GoodB())), "</root>", "<c Id='b'/></root>");
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] { Verifies(text); }), "Duplicate URI found: b");
}

TEST(ReferenceValidation, StopsAtTheFirstReferenceThatCannotBeChecked) {
    EXPECT_EQ(RefusalOf<MissingReferentException>(Missing() + Reference({"#other", ""})),
              "The URI could not be resolved: #nowhere");
}

TEST(ReferenceValidation, ResolvesThenCanonicalizesThenDigests) {
    const std::string canonicalization =
        "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\"></ds:Transform>";
    const std::string unknownDigest =
        Replaced(GoodA(), "http://www.w3.org/2001/04/xmlenc#sha256", "urn:digest");
    const std::string nothingKnown = Replaced(unknownDigest, canonicalization, "");
    EXPECT_EQ(RefusalOf<MissingReferentException>(Replaced(nothingKnown, "#a", "#nowhere")),
              "The URI could not be resolved: #nowhere");
    EXPECT_EQ(RefusalOf<UnsupportedCanonicalizationException>(nothingKnown),
              "The following canonicalization method is unsupported: ");
    EXPECT_EQ(RefusalOf<UnsupportedHashAlgorithmException>(unknownDigest),
              "The following hash algorithm is unsupported: urn:digest");
}

TEST(ReferenceValidation, RefusesUrisOfOtherForms) {
    for (const std::string uri : {"http://host/a", "a", "#xpointer(/)"})
        EXPECT_EQ(RefusalOf<MissingReferentException>(Reference({uri, ""})),
                  "The URI could not be resolved: " + uri);
}

TEST(ReferenceValidation, TakesAReferenceWithoutUriAsTheRoot) {
    EXPECT_TRUE(Verifies(SignedText(Signed(Replaced(GoodRoot(), " URI=\"\"", "")))));
}

TEST(ReferenceValidation, LeavesOutTheOwnSignatureOnly) {
    const std::string inner = Signed(GoodA());
    // Below its parent, which declares the prefix, the canonical form declares it no more.
    const std::string innerForm =
        Replaced(inner, "<ds:SignedInfo xmlns:ds=\"http://www.w3.org/2000/09/xmldsig#\">",
                 "<ds:SignedInfo>");
    const std::string covered = "<root ID=\"r\">" + innerForm + kA + kB + "</root>";
    const std::string outer = Signed(Reference({"", covered}));
    const Held<Document> document = Parsed("<root ID=\"r\">" + inner + kA + kB + outer + "</root>");
    for (Node* const child : {document->GetRootElement()->GetFirstChild(),
                              document->GetRootElement()->GetLastChild()}) {
        boost::intrusive_ptr<Signature> signature;
        CreateSignatureFromDom(document->GetRootElement(), dynamic_cast<ElementNode*>(child),
                               signature);
        EXPECT_TRUE(signature->Verify(OfferingTheSignersKey().get(), {}));
    }
}

TEST(ReferenceValidation, LeavesNothingOutOfAReferentBesideTheSignature) {
    EXPECT_TRUE(Verifies(SignedText(Signed(Reference({"#a", kA, true})))));
    EXPECT_TRUE(Verifies(SignedText(Signed(Reference({"#a", kA, false})))));
}

TEST(ReferenceValidation, FindsTheSignatureDeepInsideItsReferent) {
    const std::string covered = "<root><a><b></b></a></root>";
    const std::string signature = Signed(Reference({"", covered}));
    EXPECT_TRUE(Verifies("<root><a><b>" + signature + "</b></a></root>"));
}

// What a reference covers is what its own settings make of its referent, whoever else refers to it.
TEST(ReferenceValidation, DigestsOneReferentAnewForOtherSettings) {
    const std::string declared = "<a xmlns:p=\"urn:p\" ID=\"a\"></a>";
    const std::string plain = "<a ID=\"a\"></a>";
    const auto verifies = [&](const std::string& references) {
        return Verifies("<root xmlns:p=\"urn:p\">" + plain + Signed(references) + "</root>");
    };
    const std::string sha256 = Reference({"#a", plain});
    const std::string again = Reference({"#a", plain});
    const std::string sha1 = Reference({"#a", plain, true, "", Algorithm::Sha1, "sha1"});
    const std::string withPrefix = Reference({"#a", declared, true, "p"});
    const std::string withOtherPrefix = Reference({"#a", plain, true, "q"});
    EXPECT_TRUE(verifies(sha256 + again + sha1 + withPrefix + withOtherPrefix + sha256));
    EXPECT_TRUE(verifies(withPrefix + sha256));

    EXPECT_FALSE(verifies(sha256 + Reference({"#a", plain, true, "p"})));
    EXPECT_FALSE(verifies(withPrefix + Reference({"#a", declared, true, ""})));
    EXPECT_FALSE(verifies(sha256 + Reference({"#a", plain, true, "", Algorithm::Sha1, "sha256"})));
    EXPECT_FALSE(verifies(sha256 + again + Reference({"#a", "<a></a>"})));
}

TEST(ReferenceValidation, TellsEnvelopedFromPlainReferencesToOneReferent) {
    // The second reference covers the signature itself, so no value could ever be right.
    ExpectRefusedUnasked(GoodRoot() + Reference({"", RootWithoutSignature(), false}));
    ExpectRefusedUnasked(Reference({"", RootWithoutSignature(), false}) + GoodRoot());
}

TEST(ReferenceValidation, TakesTheLastOfSeveralPrefixLists) {
    const std::string plain = "<a ID=\"a\"></a>";
    const std::string declared = "<a xmlns:p=\"urn:p\" ID=\"a\"></a>";
    const std::string end = "</ds:Transforms>";
    const auto transform = [](const std::string& content) {
        return "<ds:Transform Algorithm=\"http://www.w3.org/2001/10/xml-exc-c14n#\">" + content +
               "</ds:Transform>";
    };
    const auto list = [](const std::string& words) {
        return "<c:InclusiveNamespaces xmlns:c=\"http://www.w3.org/2001/10/xml-exc-c14n#\" "
               "PrefixList=\"" +
               words + "\"></c:InclusiveNamespaces>";
    };
    const auto verifies = [&](const std::string& reference) {
        return Verifies("<root xmlns:p=\"urn:p\">" + plain + Signed(reference) + "</root>");
    };
    EXPECT_TRUE(verifies(
        Replaced(Reference({"#a", declared, true, "q"}), end, transform(list("p")) + end)));
    EXPECT_TRUE(
        verifies(Replaced(Reference({"#a", plain, true, "p"}), end, transform(list("q")) + end)));
    EXPECT_TRUE(
        verifies(Replaced(Reference({"#a", plain, true, "p"}), end, transform(list("")) + end)));
    // One without a list leaves the earlier one standing.
    EXPECT_TRUE(
        verifies(Replaced(Reference({"#a", declared, true, "p"}), end, transform("") + end)));
}

struct CoverageCase {
    const char* name;
    std::vector<const char*> references;
    URIs required;
    bool covered;
};
class RequiredURIs : public testing::TestWithParam<CoverageCase> {};

TEST_P(RequiredURIs, NameElementsInsideSomeReferent) {
    std::string references;
    for (const std::string uri : GetParam().references)
        references += uri.empty() || uri == "#r" ? Reference({uri, RootWithoutSignature()})
                      : uri == "#a"              ? GoodA()
                                                 : GoodB();
    const ResolverPtr resolver = OfferingTheSignersKey();
    EXPECT_EQ(Verifies(SignedText(Signed(references)), *resolver, GetParam().required),
              GetParam().covered);
    EXPECT_EQ(resolver->asked, GetParam().covered ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    SignatureVerification, RequiredURIs,
    testing::Values(CoverageCase{"AllBelowTheRoot", {""}, {"#r", "#a", "#b", "#x"}, true},
                    CoverageCase{"AllBelowTheRootByItsIdentifier", {"#r"}, {"#a", "#r"}, true},
                    CoverageCase{"TheReferentItself", {"#a"}, {"#a"}, true},
                    CoverageCase{"BelowTheReferent", {"#a"}, {"#x"}, true},
                    CoverageCase{"BesideTheReferent", {"#b"}, {"#a"}, false},
                    CoverageCase{"AboveTheReferent", {"#a"}, {"#r"}, false},
                    CoverageCase{"InOneOfTwoReferents", {"#b", "#a"}, {"#x"}, true},
                    CoverageCase{"OneInEachOfTwoReferents", {"#a", "#b"}, {"#a", "#b"}, true},
                    CoverageCase{"OneOfThemNowhere", {"#a"}, {"#a", "#b"}, false},
                    CoverageCase{"NoElement", {""}, {"#nowhere"}, false},
                    CoverageCase{"OtherForm", {""}, {"a"}, false},
                    CoverageCase{"External", {""}, {"http://host/#a"}, false},
                    CoverageCase{"Empty", {"#b"}, {""}, true},
                    CoverageCase{"EmptyIdentifier", {""}, {"#"}, false},
                    CoverageCase{"None", {"#a"}, {}, true}),
    [](const auto& row) { return std::string(row.param.name); });

// The transforms do not count: what the signature leaves out of its digest still lies inside.
TEST(RequiredURIs, MayNameTheSignatureItself) {
    const std::string text =
        Replaced(SignedText(Signed(GoodRoot())), "<ds:Signature ", "<ds:Signature Id=\"s\" ");
    EXPECT_TRUE(Verifies(text, {"#s"}));
    EXPECT_FALSE(Verifies(text, {"#t"}));
}

TEST(RequiredURIs, AreRefusedWhenTheyOccurTwiceInsideAReferent) {
    const std::string twice = "<c ID=\"c\"><d ID=\"c\"></d></c>";
    const std::string root = "<root>" + twice + "<e ID=\"e\"></e></root>";
    const auto textWith = [&](const std::string& references) {
        return Replaced(root, "</root>", Signed(references) + "</root>");
    };
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] {
                  Verifies(textWith(Reference({"", root})), {"#c"});
              }),
              "Duplicate URI found: c");
    // A second one outside the referent does no harm; here both lie outside.
    EXPECT_FALSE(Verifies(textWith(Reference({"#e", "<e ID=\"e\"></e>"})), {"#c"}));
    // Looked up also when the digest is wrong, and before the next reference.
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] {
                  Verifies(textWith(Reference({"", "wrong"}) + Missing()), {"#c"});
              }),
              "Duplicate URI found: c");
    // But not before the reference's own digest.
    EXPECT_EQ(
        MessageOf<UnsupportedHashAlgorithmException>([&] {
            Verifies(textWith(Reference({"", root, true, "", "urn:digest", "sha256"})), {"#c"});
        }),
        "The following hash algorithm is unsupported: urn:digest");
}

TEST(RequiredURIs, AreNotLookedUpAgainOnceTheyAreCovered) {
    const std::string first = "<c ID=\"c\"><d ID=\"x\"></d></c>";
    const std::string root = "<root>" + first + "<e ID=\"x\"></e></root>";
    const auto textWith = [&](const std::string& references) {
        return Replaced(root, "</root>", Signed(references) + "</root>");
    };
    EXPECT_TRUE(Verifies(textWith(Reference({"#c", first}) + Reference({"", root})), {"#x"}));
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] {
                  Verifies(textWith(Reference({"", root}) + Reference({"#c", first})), {"#x"});
              }),
              "Duplicate URI found: x");
}

TEST(RequiredURIs, MayBePendingWhileAnotherOneIsRefused) {
    const std::string root = "<root><c ID=\"c\"></c><d ID=\"c\"></d></root>";
    const std::string text = Replaced(root, "</root>", Signed(Reference({"", root})) + "</root>");
    EXPECT_EQ(MessageOf<DuplicateURIException>([&] {
                  Verifies(text, {"#b", "#c", "#d"});
              }),
              "Duplicate URI found: c");
}

}  // namespace
}  // namespace Saml::Xml::Security
