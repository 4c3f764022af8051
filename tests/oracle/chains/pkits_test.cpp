#include "oracle/chains/pkits_cases.h"
#include "saml/security/certificate_codec.h"
#include "saml/security/trusted_certificates.h"
#include "saml/security/x509_key_info.h"
#include "support/resolving.h"
#include "support/system_policy.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <list>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

// NIST's test suite of certification paths, its trust anchor the one trusted certificate.
namespace Saml::Xml::Security {
namespace {

using Pkits::Verdict;

ByteBlob Der(const std::string& name) {
    return TestKeys::ToBlob(TestKeys::ReadFile(
        SAMLTOKEN_CRYPTOGRAPHY_VECTORS "/x509/PKITS_data/certs/" + name + ".crt"));
}

ByteBlob TrustAnchor() {
    return Der("TrustAnchorRootCertificate");
}

/// Names of files, the end entity last.
std::vector<std::string> NamesOf(const Pkits::Case& row) {
    std::istringstream words(row.path);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

std::string SectionOf(const std::string& number) {
    return number.substr(0, number.rfind('.'));
}

std::string CaseOf(const std::string& number) {
    return number.substr(number.rfind('.') + 1);
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// Each section of which there are cases, once.
std::vector<std::string> SectionsTaken() {
    std::vector<std::string> sections;
    for (const Pkits::Case& row : Pkits::Cases())
        if (sections.empty() || sections.back() != SectionOf(row.number))
            sections.push_back(SectionOf(row.number));
    return sections;
}

/// The departure for a case, null for most.
const Pkits::Departure* DepartureFor(const std::string& number) {
    static const std::vector<Pkits::Departure> departures = Pkits::Departures();
    const auto found = std::find_if(
        departures.begin(), departures.end(),
        [&number](const Pkits::Departure& departure) { return number == departure.number; });
    return found == departures.end() ? nullptr : &*found;
}

/// OpenSSL's serialization of the key in a certificate.
std::vector<unsigned char> PublicKeyIn(const ByteBlob& der) {
    const CertificateHandle certificate = ParseCertificateDer(der);
    unsigned char* output = nullptr;
    const int length = i2d_PublicKey(X509_get0_pubkey(certificate.get()), &output);
    const AllocationHandle encoding(output);
    return length < 0 ? std::vector<unsigned char>()
                      : std::vector<unsigned char>(output, output + length);
}

/// False for the key of a certificate that leaves its parameters to the issuer.
bool IsWholeAlone(const ByteBlob& der) {
    const CertificateHandle certificate = ParseCertificateDer(der);
    return EVP_PKEY_missing_parameters(X509_get0_pubkey(certificate.get())) == 0;
}

/// What the resolver makes of `sent`, the end entity first.
Verdict OursAbout(const std::list<ByteBlob>& sent) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustChainKeyResolver({TrustAnchor()}, resolver);
    const boost::intrusive_ptr<KeyInfo> keyInfo(new X509KeyInfo("ds", sent));
    const Keys keys = KeysOf(*resolver, keyInfo.get());
    if (keys.empty()) return Verdict::Fails;
    if (IsWholeAlone(sent.front())) {
        EXPECT_EQ(keys, Keys{PublicKeyIn(sent.front())});
    }
    return Verdict::Validates;
}

/// The certificates of a case in the order of its path from the end entity up.
std::list<ByteBlob> Upwards(const Pkits::Case& row) {
    std::list<ByteBlob> ders;
    for (const std::string& name : NamesOf(row))
        ders.push_front(Der(name));
    return ders;
}

/// The same with the trust anchor, in reverse order behind the end entity.
std::list<ByteBlob> Downwards(const Pkits::Case& row) {
    std::list<ByteBlob> ders = Upwards(row);
    ders.push_back(TrustAnchor());
    std::reverse(std::next(ders.begin()), ders.end());
    return ders;
}

class PkitsSection : public testing::TestWithParam<std::string> {};

TEST_P(PkitsSection, HasTheVerdictsOfTheDocument) {
    // The DSA signatures of 4.1.4 are made with SHA-1, all others of the suite with SHA-256.
    if (GetParam() == "4.1") SKIP_WHERE_SHA1_SIGNATURES_ARE_REFUSED();
    // The resolver asks the system's clock: when the suite is out of date every path fails.
    ASSERT_TRUE(IsCurrent(*ParseCertificateDer(TrustAnchor()))) << "the suite ended with 2030";

    int agreeing = 0;
    int departing = 0;
    for (const Pkits::Case& row : Pkits::Cases()) {
        if (SectionOf(row.number) != GetParam()) continue;
        SCOPED_TRACE(std::string(row.number) + " " + row.title + ": " + row.path);
        const Verdict ours = OursAbout(Upwards(row));
        EXPECT_EQ(OursAbout(Downwards(row)), ours);

        const Pkits::Departure* const departure = DepartureFor(row.number);
        EXPECT_EQ(ours, departure == nullptr ? row.verdict : departure->ours);
        ++(ours == row.verdict ? agreeing : departing);
        if (departure != nullptr)
            std::cout << row.number << " " << row.title << ", but ours " << ours << ": "
                      << departure->reason << "\n";
    }
    std::cout << "PKITS " << GetParam() << ": " << agreeing << " verdicts as in the document, "
              << departing << " not\n";
    RecordProperty("as in the document", agreeing);
    RecordProperty("not as in the document", departing);
    EXPECT_GT(agreeing, 0);
}

INSTANTIATE_TEST_SUITE_P(Oracle, PkitsSection, testing::ValuesIn(SectionsTaken()),
                         [](const auto& row) { return "Chapter4Section" + CaseOf(row.param); });

// The suite's file names repeat number and verdict of a case.
TEST(PkitsCases, AreWhatTheNamesOfTheFilesSay) {
    std::map<std::string, int> counts;
    for (const Pkits::Case& row : Pkits::Cases()) {
        SCOPED_TRACE(row.number);
        const std::string endEntity = NamesOf(row).back();
        EXPECT_TRUE(EndsWith(endEntity, "Test" + CaseOf(row.number) + "EE")) << endEntity;
        EXPECT_TRUE(EndsWith(row.title, "Test" + CaseOf(row.number))) << row.title;
        const std::string verdict = row.verdict == Verdict::Validates ? "Valid" : "Invalid";
        EXPECT_EQ(endEntity.find(verdict), 0U) << endEntity;
        EXPECT_EQ(std::string(row.title).find(verdict + " "), 0U) << row.title;
        EXPECT_EQ(CaseOf(row.number), std::to_string(++counts[SectionOf(row.number)]));
    }
    const std::map<std::string, int> documented = {
        {"4.1", 6}, {"4.2", 8}, {"4.3", 11}, {"4.6", 17}, {"4.7", 5}, {"4.13", 38}, {"4.16", 2}};
    EXPECT_EQ(counts, documented);
}

TEST(PkitsCases, HaveTheDeparturesEachWithAVerdictOfItsOwn) {
    std::size_t found = 0;
    for (const Pkits::Case& row : Pkits::Cases()) {
        const Pkits::Departure* const departure = DepartureFor(row.number);
        if (departure == nullptr) continue;
        EXPECT_NE(departure->ours, row.verdict) << row.number;
        ++found;
    }
    EXPECT_EQ(found, Pkits::Departures().size());
}

TEST(PkitsCases, AndSectionsLeftOutCoverTheChapter) {
    const std::vector<std::string> taken = SectionsTaken();
    std::set<std::string> sections(taken.begin(), taken.end());
    EXPECT_EQ(sections.size(), taken.size());
    for (const Pkits::LeftOut& row : Pkits::SectionsLeftOut()) {
        std::cout << row.section << " " << row.title << ": left out, since " << row.reason << "\n";
        EXPECT_TRUE(sections.insert(row.section).second) << row.section;
    }
    for (int section = 1; section <= 16; ++section)
        EXPECT_EQ(sections.count("4." + std::to_string(section)), 1U) << section;
    EXPECT_EQ(sections.size(), 16U);
}

}  // namespace
}  // namespace Saml::Xml::Security
