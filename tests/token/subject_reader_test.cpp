#include "saml/token/subject_reader.h"

#include "support/thrown.h"
#include "token/fragment.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Saml;

constexpr char kBearer[] =
    "<saml:Subject>"
    "<saml:NameID Format='urn:format'>jdoe@corp</saml:NameID>"
    "<saml:SubjectConfirmation Method='urn:oasis:names:tc:SAML:2.0:cm:bearer'>"
    "<saml:SubjectConfirmationData NotOnOrAfter='2030-01-01T00:00:00Z'/>"
    "</saml:SubjectConfirmation>"
    "</saml:Subject>";

// "AQID" is Base64 of the bytes 1, 2, 3 (RFC 4648 section 4).
constexpr char kHolderOfKey[] =
    "<saml:Subject>"
    "<saml:NameID Format='urn:format'>jdoe@corp</saml:NameID>"
    "<saml:SubjectConfirmation Method='urn:oasis:names:tc:SAML:2.0:cm:holder-of-key'>"
    "<saml:NameID Format='urn:delegate'>svc@corp</saml:NameID>"
    "<saml:SubjectConfirmationData xsi:type='saml:KeyInfoConfirmationDataType'"
    " NotOnOrAfter='2031-01-01T00:00:00Z'>"
    "<ds:KeyInfo><ds:X509Data><ds:X509Certificate>AQID</ds:X509Certificate></ds:X509Data>"
    "</ds:KeyInfo>"
    "</saml:SubjectConfirmationData>"
    "</saml:SubjectConfirmation>"
    "</saml:Subject>";

ParsedSubject Read(const std::string& xml) {
    return ReadSubject(Fragment(xml).Element());
}

TEST(SubjectReader, ReadsABearerConfirmation) {
    ParsedSubject subject = Read(kBearer);
    EXPECT_EQ(subject.nameId.format, "urn:format");
    EXPECT_EQ(subject.nameId.value, "jdoe@corp");
    EXPECT_EQ(subject.confirmation.method, ConfirmationType::Bearer);
    EXPECT_FALSE(subject.confirmation.delegateId.has_value());
    EXPECT_EQ(subject.confirmation.notOnOrAfter.value(), "2030-01-01T00:00:00Z");
    EXPECT_EQ(subject.confirmation.certificate, nullptr);
}

TEST(SubjectReader, ReadsAHolderOfKeyConfirmationWithItsDelegate) {
    ParsedSubject subject = Read(kHolderOfKey);
    EXPECT_EQ(subject.confirmation.method, ConfirmationType::HolderOfKey);
    ASSERT_TRUE(subject.confirmation.delegateId.has_value());
    EXPECT_EQ(subject.confirmation.delegateId->format, "urn:delegate");
    EXPECT_EQ(subject.confirmation.delegateId->value, "svc@corp");
    EXPECT_EQ(subject.confirmation.notOnOrAfter.value(), "2031-01-01T00:00:00Z");
    ASSERT_NE(subject.confirmation.certificate, nullptr);
    EXPECT_EQ(*subject.confirmation.certificate, (std::vector<unsigned char>{1, 2, 3}));
}

TEST(SubjectReader, LetsAHolderOfKeyConfirmationHaveNoEnd) {
    ParsedSubject subject =
        Read(Forge::Replaced(kHolderOfKey, " NotOnOrAfter='2031-01-01T00:00:00Z'", ""));
    EXPECT_EQ(subject.confirmation.notOnOrAfter.value(), "1970-01-01T00:00:00.000Z");
}

TEST(SubjectReader, LetsABearerConfirmationNameADelegate) {
    const ParsedSubject subject =
        Read(Forge::Replaced(kBearer, "<saml:SubjectConfirmationData",
                             "<saml:NameID Format='f'>svc@corp</saml:NameID>"
                             "<saml:SubjectConfirmationData"));
    ASSERT_TRUE(subject.confirmation.delegateId.has_value());
    EXPECT_EQ(subject.confirmation.delegateId->value, "svc@corp");
}

TEST(SubjectReader, SkipsBlanksAndCommentsBetweenElements) {
    std::string spaced;
    for (const char character : std::string(kHolderOfKey)) {
        spaced += character;
        if (character == '>') spaced += "<!-- c -->";
    }
    for (const char* const tag : {"<saml:SubjectConfirmation ", "<ds:KeyInfo>", "<ds:X509Data>",
                                  "<ds:X509Certificate>", "</saml:Subject>"})
        spaced = Forge::Replaced(spaced, tag, std::string("\r\n\t ") + tag);
    const ParsedSubject subject = Read(spaced);
    EXPECT_EQ(subject.nameId.value, "jdoe@corp");
    EXPECT_EQ(*subject.confirmation.certificate, (std::vector<unsigned char>{1, 2, 3}));
}

TEST(SubjectReader, ResolvesTheDataTypeThroughTheDefaultDeclaration) {
    const std::string xml =
        Forge::Replaced(kHolderOfKey, "xsi:type='saml:KeyInfoConfirmationDataType'",
                        "xsi:type='KeyInfoConfirmationDataType'"
                        " xmlns='urn:oasis:names:tc:SAML:2.0:assertion'");
    EXPECT_EQ(Read(xml).confirmation.method, ConfirmationType::HolderOfKey);
}

TEST(SubjectReader, DecodesACertificateInSeveralLines) {
    const ParsedSubject subject = Read(Forge::Replaced(kHolderOfKey, "AQID", "\nAQID\n AQID\n"));
    EXPECT_EQ(*subject.confirmation.certificate, (std::vector<unsigned char>{1, 2, 3, 1, 2, 3}));
}

TEST(NameRecords, KeepTheirTextAsItIs) {
    const Fragment fragment("<saml:Issuer Format=''> a &amp; b </saml:Issuer>");
    const NameRecord record = ReadNameRecord(fragment.Element());
    EXPECT_EQ(record.format, "");
    EXPECT_EQ(record.value, " a & b ");
}

class BearerRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(BearerRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kBearer, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    SubjectReader, BearerRefusal,
    testing::Values(
        Refusal{"AttributeOnSubject", "<saml:Subject>", "<saml:Subject a='1'>",
                "Unexpected attributes on element 'Subject'"},
        Refusal{"NoNameId", "<saml:NameID Format='urn:format'>jdoe@corp</saml:NameID>", "",
                "Expected element 'NameID' not found."},
        Refusal{"NameIdOfAnotherNamespace",
                "<saml:NameID Format='urn:format'>jdoe@corp</saml:NameID>",
                "<other:NameID Format='urn:format'>jdoe@corp</other:NameID>",
                "Element 'NameID' has unexpected namespace"},
        Refusal{"CDataBeforeNameId", "<saml:NameID ", "<![CDATA[x]]><saml:NameID ",
                "Expected element 'NameID' not found."},
        Refusal{"TextBeforeNameId", "<saml:NameID ", "x<saml:NameID ",
                "Expected element 'NameID' not found."},
        Refusal{"NameIdWithoutFormat", " Format='urn:format'", "",
                "Node 'NameID is missing required attribute 'Format'"},
        Refusal{"NameIdWithQualifier", " Format='urn:format'",
                " Format='urn:format' NameQualifier='q'",
                "Unexpected attributes on element 'NameID'"},
        Refusal{"EmptyNameId", "jdoe@corp", "",
                "Element 'NameID' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"SplitNameId", "jdoe@corp", "admin<!-- -->.evil@corp",
                "Element 'NameID' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"CDataNameId", "jdoe@corp", "<![CDATA[jdoe@corp]]>",
                "Element 'NameID' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"SecondNameId", "<saml:SubjectConfirmation ",
                "<saml:NameID Format='f'>x</saml:NameID><saml:SubjectConfirmation ",
                "Expected element 'SubjectConfirmation' not found."},
        Refusal{"ConfirmationOfAnotherNamespace", "<saml:SubjectConfirmation ",
                "<other:SubjectConfirmation/><saml:SubjectConfirmation ",
                "Element 'SubjectConfirmation' has unexpected namespace"},
        Refusal{"ConfirmationWithoutMethod", " Method='urn:oasis:names:tc:SAML:2.0:cm:bearer'", "",
                "Node 'SubjectConfirmation is missing required attribute 'Method'"},
        Refusal{"AttributeOnConfirmation", " Method=", " a='1' Method=",
                "Unexpected attributes on element 'SubjectConfirmation'"},
        Refusal{"UnknownMethod", "cm:bearer", "cm:sender-vouches",
                "Unknown subject confirmation method: "
                "'urn:oasis:names:tc:SAML:2.0:cm:sender-vouches'"},
        Refusal{"MethodInUpperCase", "cm:bearer", "cm:Bearer",
                "Unknown subject confirmation method: 'urn:oasis:names:tc:SAML:2.0:cm:Bearer'"},
        Refusal{"EmptyMethod", "urn:oasis:names:tc:SAML:2.0:cm:bearer", "",
                "Unknown subject confirmation method: ''"},
        Refusal{"MethodIsDecidedBeforeTheChildren", "urn:oasis:names:tc:SAML:2.0:cm:bearer'>",
                "m'><other:child/>", "Unknown subject confirmation method: 'm'"},
        Refusal{"NoData", "<saml:SubjectConfirmationData NotOnOrAfter='2030-01-01T00:00:00Z'/>", "",
                "Expected element 'SubjectConfirmationData' not found."},
        Refusal{"DataOfAnotherNamespace", "<saml:SubjectConfirmationData ",
                "<other:SubjectConfirmationData ",
                "Element 'SubjectConfirmationData' has unexpected namespace"},
        Refusal{"DelegateIdOfAnotherNamespace", "<saml:SubjectConfirmationData ",
                "<other:NameID Format='f'>x</other:NameID><saml:SubjectConfirmationData ",
                "Expected element 'SubjectConfirmationData' not found."},
        Refusal{"DelegateIdWithoutFormat", "<saml:SubjectConfirmationData ",
                "<saml:NameID>x</saml:NameID><saml:SubjectConfirmationData ",
                "Node 'NameID is missing required attribute 'Format'"},
        Refusal{"EmptyDelegateId", "<saml:SubjectConfirmationData ",
                "<saml:NameID Format='f'> </saml:NameID><saml:SubjectConfirmationData ",
                "Element 'NameID' must only have textual content (but has extra children or is "
                "empty)."},
        Refusal{"DataWithoutEnd", " NotOnOrAfter='2030-01-01T00:00:00Z'", "",
                "Node 'SubjectConfirmationData is missing required attribute 'NotOnOrAfter'"},
        Refusal{"DataEndIsNoDate", "'2030-01-01T00:00:00Z'", "'tomorrow'",
                "SubjectConfirmationData/@NotOnOrAfter is not a date"},
        Refusal{"DataWithRecipient", " NotOnOrAfter=", " Recipient='r' NotOnOrAfter=",
                "Unexpected attributes on element 'SubjectConfirmationData'"},
        Refusal{"DataWithType",
                " NotOnOrAfter=", " xsi:type='saml:KeyInfoConfirmationDataType' NotOnOrAfter=",
                "Unexpected attributes on element 'SubjectConfirmationData'"},
        Refusal{"DataWithChild", "'2030-01-01T00:00:00Z'/>",
                "'2030-01-01T00:00:00Z'><ds:KeyInfo/></saml:SubjectConfirmationData>",
                "Element 'SubjectConfirmationData' must be empty"},
        Refusal{"DataWithText", "'2030-01-01T00:00:00Z'/>",
                "'2030-01-01T00:00:00Z'>x</saml:SubjectConfirmationData>",
                "Element 'SubjectConfirmationData' must be empty"},
        Refusal{"DataThatIsFullWithABadEnd", "'2030-01-01T00:00:00Z'/>",
                "'tomorrow'>x</saml:SubjectConfirmationData>",
                "Element 'SubjectConfirmationData' must be empty"},
        Refusal{"SecondData", "<saml:SubjectConfirmationData ",
                "<saml:SubjectConfirmationData NotOnOrAfter='2030-01-01T00:00:00Z'/>"
                "<saml:SubjectConfirmationData ",
                "Unexpected elements after SubjectConfirmationData"},
        Refusal{"TextAfterData", "</saml:SubjectConfirmation>", "x</saml:SubjectConfirmation>",
                "Unexpected elements after SubjectConfirmationData"},
        Refusal{"SecondConfirmation", "</saml:SubjectConfirmation>",
                "</saml:SubjectConfirmation><saml:SubjectConfirmation/>",
                "Unexpected elements after SubjectConfirmation"},
        Refusal{"CDataAfterConfirmation", "</saml:SubjectConfirmation>",
                "</saml:SubjectConfirmation><![CDATA[]]>",
                "Unexpected elements after SubjectConfirmation"}),
    NameOfRow);

class HolderOfKeyRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(HolderOfKeyRefusal, SaysWhatIsWrong) {
    const std::string xml = Forge::Replaced(kHolderOfKey, GetParam().from, GetParam().to);
    EXPECT_EQ(MessageOf<ParseException>([&] { Read(xml); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    SubjectReader, HolderOfKeyRefusal,
    testing::Values(
        Refusal{"NoType", " xsi:type='saml:KeyInfoConfirmationDataType'", "",
                "Node 'SubjectConfirmationData is missing required attribute 'xsi:type'"},
        Refusal{"TypeOfNoNamespace", "xsi:type=", "type=",
                "Node 'SubjectConfirmationData is missing required attribute 'xsi:type'"},
        Refusal{"UnexpectedAttribute", "xsi:type=", "Recipient='r' xsi:type=",
                "Unexpected attribute 'Recipient' on element 'SubjectConfirmationData'"},
        Refusal{"PrefixedEnd", " NotOnOrAfter=", " other:NotOnOrAfter=",
                "Unexpected attribute 'other:NotOnOrAfter' on element 'SubjectConfirmationData'"},
        Refusal{"EndOfAnUnboundPrefix", " NotOnOrAfter=", " unbound:NotOnOrAfter=",
                "Unexpected attribute 'unbound:NotOnOrAfter' on element "
                "'SubjectConfirmationData'"},
        Refusal{"TypeOfAnotherNamespace", "'saml:KeyInfoConfirmationDataType'",
                "'other:KeyInfoConfirmationDataType'",
                "Invalid SubjectConfirmationData type: 'other:KeyInfoConfirmationDataType'"},
        Refusal{"TypeOfAnotherName", "'saml:KeyInfoConfirmationDataType'", "'saml:Other'",
                "Invalid SubjectConfirmationData type: 'saml:Other'"},
        Refusal{"TypeWithoutPrefixOrDefaultDeclaration", "'saml:KeyInfoConfirmationDataType'",
                "'KeyInfoConfirmationDataType'",
                "Invalid SubjectConfirmationData type: 'KeyInfoConfirmationDataType'"},
        Refusal{"EmptyType", "'saml:KeyInfoConfirmationDataType'", "''",
                "Invalid SubjectConfirmationData type: ''"},
        Refusal{"TypeBeforeEnd",
                "'saml:KeyInfoConfirmationDataType' NotOnOrAfter='2031-01-01T00:00:00Z'",
                "'saml:Other' NotOnOrAfter='never'",
                "Invalid SubjectConfirmationData type: 'saml:Other'"},
        Refusal{"EndIsNoDate", "'2031-01-01T00:00:00Z'", "'never'",
                "SubjectConfirmationData/@NotOnOrAfter is not a date"},
        Refusal{"EmptyEnd", "'2031-01-01T00:00:00Z'", "''",
                "SubjectConfirmationData/@NotOnOrAfter is not a date"},
        Refusal{"NoKeyInfo",
                "<ds:KeyInfo><ds:X509Data><ds:X509Certificate>AQID</ds:X509Certificate>"
                "</ds:X509Data></ds:KeyInfo>",
                "", "Expected element 'KeyInfo' not found."},
        Refusal{"KeyInfoOfAnotherNamespace", "<ds:KeyInfo>", "<saml:KeyInfo/><ds:KeyInfo>",
                "Element 'KeyInfo' has unexpected namespace"},
        Refusal{"TextBeforeKeyInfo", "<ds:KeyInfo>", "x<ds:KeyInfo>",
                "Expected element 'KeyInfo' not found."},
        Refusal{"AttributeOnKeyInfo", "<ds:KeyInfo>", "<ds:KeyInfo Id='k'>",
                "Unexpected attributes on element 'KeyInfo'"},
        Refusal{"SecondKeyInfo", "</ds:KeyInfo>", "</ds:KeyInfo><ds:KeyInfo/>",
                "Unexpected elements after SubjectConfirmationData/KeyInfo"},
        Refusal{"TextAfterKeyInfo", "</ds:KeyInfo>", "</ds:KeyInfo>x",
                "Unexpected elements after SubjectConfirmationData/KeyInfo"},
        Refusal{"OtherKeyInfoContent", "<ds:X509Data>", "<ds:KeyName>k</ds:KeyName><ds:X509Data>",
                "Expected element 'X509Data' not found."},
        Refusal{"X509DataOfAnotherNamespace", "<ds:X509Data>", "<saml:X509Data/><ds:X509Data>",
                "Element 'X509Data' has unexpected namespace"},
        Refusal{"AttributeOnX509Data", "<ds:X509Data>", "<ds:X509Data a='1'>",
                "Unexpected attributes on element 'X509Data'"},
        Refusal{"SecondX509Data", "</ds:X509Data>", "</ds:X509Data><ds:X509Data/>",
                "Unexpected elements after X509Data"},
        Refusal{"OtherX509Content", "<ds:X509Certificate>",
                "<ds:X509SKI>AQID</ds:X509SKI><ds:X509Certificate>",
                "Expected element 'X509Certificate' not found."},
        Refusal{"CertificateOfAnotherNamespace", "<ds:X509Certificate>",
                "<saml:X509Certificate/><ds:X509Certificate>",
                "Element 'X509Certificate' has unexpected namespace"},
        Refusal{"AttributeOnCertificate", "<ds:X509Certificate>", "<ds:X509Certificate a='1'>",
                "Unexpected attributes on element 'X509Certificate'"},
        Refusal{"EmptyCertificate", "AQID", "",
                "Element 'X509Certificate' must only have textual content (but has extra children "
                "or is empty)."},
        Refusal{"SplitCertificate", "AQID", "AQID<!-- -->AQID",
                "Element 'X509Certificate' must only have textual content (but has extra children "
                "or is empty)."},
        Refusal{"CertificateIsNoBase64", "AQID", "A*ID", "Invalid Base64"},
        Refusal{"TruncatedCertificate", "AQID", "AQI", "Invalid Base64"},
        Refusal{"SecondCertificate", "</ds:X509Certificate>",
                "</ds:X509Certificate><ds:X509Certificate>AQID</ds:X509Certificate>",
                "Unexpected elements after X509Certificate"},
        Refusal{"NilElementAfterCertificate", "</ds:X509Certificate>",
                "</ds:X509Certificate><ds:X509Certificate xsi:nil='true'/>",
                "Unexpected elements after X509Certificate"},
        Refusal{"AfterData", "</saml:SubjectConfirmationData>",
                "</saml:SubjectConfirmationData><other:more/>",
                "Unexpected elements after SubjectConfirmationData"}),
    NameOfRow);

}  // namespace
