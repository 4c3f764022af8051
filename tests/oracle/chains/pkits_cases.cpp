#include "oracle/chains/pkits_cases.h"

#include <openssl/opensslv.h>

#include <iterator>
#include <vector>

// PKITS 1.0.1, chapter 4. The edition with RSA keys of 2048 bits and SHA-256; only the DSA keys of
// section 4.1 have 1024 bits and sign SHA-1. OpenSSL sets no security level for paths by itself.
namespace Pkits {
namespace {

constexpr Case kCases[] = {
    // 4.1 Signature Verification
    {"4.1.1", "Valid Signatures Test1", Verdict::Validates,
     "GoodCACert ValidCertificatePathTest1EE"},
    {"4.1.2", "Invalid CA Signature Test2", Verdict::Fails,
     "BadSignedCACert InvalidCASignatureTest2EE"},
    {"4.1.3", "Invalid EE Signature Test3", Verdict::Fails, "GoodCACert InvalidEESignatureTest3EE"},
    {"4.1.4", "Valid DSA Signatures Test4", Verdict::Validates,
     "DSACACert ValidDSASignaturesTest4EE"},
    {"4.1.5", "Valid DSA Parameter Inheritance Test5", Verdict::Validates,
     "DSACACert DSAParametersInheritedCACert ValidDSAParameterInheritanceTest5EE"},
    {"4.1.6", "Invalid DSA Signature Test6", Verdict::Fails,
     "DSACACert InvalidDSASignatureTest6EE"},

    // 4.2 Validity Periods
    {"4.2.1", "Invalid CA notBefore Date Test1", Verdict::Fails,
     "BadnotBeforeDateCACert InvalidCAnotBeforeDateTest1EE"},
    {"4.2.2", "Invalid EE notBefore Date Test2", Verdict::Fails,
     "GoodCACert InvalidEEnotBeforeDateTest2EE"},
    {"4.2.3", "Valid pre2000 UTC notBefore Date Test3", Verdict::Validates,
     "GoodCACert Validpre2000UTCnotBeforeDateTest3EE"},
    {"4.2.4", "Valid GeneralizedTime notBefore Date Test4", Verdict::Validates,
     "GoodCACert ValidGeneralizedTimenotBeforeDateTest4EE"},
    {"4.2.5", "Invalid CA notAfter Date Test5", Verdict::Fails,
     "BadnotAfterDateCACert InvalidCAnotAfterDateTest5EE"},
    {"4.2.6", "Invalid EE notAfter Date Test6", Verdict::Fails,
     "GoodCACert InvalidEEnotAfterDateTest6EE"},
    {"4.2.7", "Invalid pre2000 UTC EE notAfter Date Test7", Verdict::Fails,
     "GoodCACert Invalidpre2000UTCEEnotAfterDateTest7EE"},
    {"4.2.8", "Valid GeneralizedTime notAfter Date Test8", Verdict::Validates,
     "GoodCACert ValidGeneralizedTimenotAfterDateTest8EE"},

    // 4.3 Verifying Name Chaining
    {"4.3.1", "Invalid Name Chaining EE Test1", Verdict::Fails,
     "GoodCACert InvalidNameChainingTest1EE"},
    {"4.3.2", "Invalid Name Chaining Order Test2", Verdict::Fails,
     "NameOrderingCACert InvalidNameChainingOrderTest2EE"},
    {"4.3.3", "Valid Name Chaining Whitespace Test3", Verdict::Validates,
     "GoodCACert ValidNameChainingWhitespaceTest3EE"},
    {"4.3.4", "Valid Name Chaining Whitespace Test4", Verdict::Validates,
     "GoodCACert ValidNameChainingWhitespaceTest4EE"},
    {"4.3.5", "Valid Name Chaining Capitalization Test5", Verdict::Validates,
     "GoodCACert ValidNameChainingCapitalizationTest5EE"},
    {"4.3.6", "Valid Name Chaining UIDs Test6", Verdict::Validates,
     "UIDCACert ValidNameUIDsTest6EE"},
    {"4.3.7", "Valid RFC3280 Mandatory Attribute Types Test7", Verdict::Validates,
     "RFC3280MandatoryAttributeTypesCACert ValidRFC3280MandatoryAttributeTypesTest7EE"},
    {"4.3.8", "Valid RFC3280 Optional Attribute Types Test8", Verdict::Validates,
     "RFC3280OptionalAttributeTypesCACert ValidRFC3280OptionalAttributeTypesTest8EE"},
    {"4.3.9", "Valid UTF8String Encoded Names Test9", Verdict::Validates,
     "UTF8StringEncodedNamesCACert ValidUTF8StringEncodedNamesTest9EE"},
    {"4.3.10", "Valid Rollover from PrintableString to UTF8String Test10", Verdict::Validates,
     "RolloverfromPrintableStringtoUTF8StringCACert "
     "ValidRolloverfromPrintableStringtoUTF8StringTest10EE"},
    {"4.3.11", "Valid UTF8String Case Insensitive Match Test11", Verdict::Validates,
     "UTF8StringCaseInsensitiveMatchCACert ValidUTF8StringCaseInsensitiveMatchTest11EE"},

    // 4.6 Verifying Basic Constraints
    {"4.6.1", "Invalid Missing basicConstraints Test1", Verdict::Fails,
     "MissingbasicConstraintsCACert InvalidMissingbasicConstraintsTest1EE"},
    {"4.6.2", "Invalid cA False Test2", Verdict::Fails,
     "basicConstraintsCriticalcAFalseCACert InvalidcAFalseTest2EE"},
    {"4.6.3", "Invalid cA False Test3", Verdict::Fails,
     "basicConstraintsNotCriticalcAFalseCACert InvalidcAFalseTest3EE"},
    {"4.6.4", "Valid basicConstraints Not Critical Test4", Verdict::Validates,
     "basicConstraintsNotCriticalCACert ValidbasicConstraintsNotCriticalTest4EE"},
    {"4.6.5", "Invalid pathLenConstraint Test5", Verdict::Fails,
     "pathLenConstraint0CACert pathLenConstraint0subCACert InvalidpathLenConstraintTest5EE"},
    {"4.6.6", "Invalid pathLenConstraint Test6", Verdict::Fails,
     "pathLenConstraint0CACert pathLenConstraint0subCACert InvalidpathLenConstraintTest6EE"},
    {"4.6.7", "Valid pathLenConstraint Test7", Verdict::Validates,
     "pathLenConstraint0CACert ValidpathLenConstraintTest7EE"},
    {"4.6.8", "Valid pathLenConstraint Test8", Verdict::Validates,
     "pathLenConstraint0CACert ValidpathLenConstraintTest8EE"},
    {"4.6.9", "Invalid pathLenConstraint Test9", Verdict::Fails,
     "pathLenConstraint6CACert pathLenConstraint6subCA0Cert pathLenConstraint6subsubCA00Cert "
     "InvalidpathLenConstraintTest9EE"},
    {"4.6.10", "Invalid pathLenConstraint Test10", Verdict::Fails,
     "pathLenConstraint6CACert pathLenConstraint6subCA0Cert pathLenConstraint6subsubCA00Cert "
     "InvalidpathLenConstraintTest10EE"},
    {"4.6.11", "Invalid pathLenConstraint Test11", Verdict::Fails,
     "pathLenConstraint6CACert pathLenConstraint6subCA1Cert pathLenConstraint6subsubCA11Cert "
     "pathLenConstraint6subsubsubCA11XCert InvalidpathLenConstraintTest11EE"},
    {"4.6.12", "Invalid pathLenConstraint Test12", Verdict::Fails,
     "pathLenConstraint6CACert pathLenConstraint6subCA1Cert pathLenConstraint6subsubCA11Cert "
     "pathLenConstraint6subsubsubCA11XCert InvalidpathLenConstraintTest12EE"},
    {"4.6.13", "Valid pathLenConstraint Test13", Verdict::Validates,
     "pathLenConstraint6CACert pathLenConstraint6subCA4Cert pathLenConstraint6subsubCA41Cert "
     "pathLenConstraint6subsubsubCA41XCert ValidpathLenConstraintTest13EE"},
    {"4.6.14", "Valid pathLenConstraint Test14", Verdict::Validates,
     "pathLenConstraint6CACert pathLenConstraint6subCA4Cert pathLenConstraint6subsubCA41Cert "
     "pathLenConstraint6subsubsubCA41XCert ValidpathLenConstraintTest14EE"},
    {"4.6.15", "Valid Self-Issued pathLenConstraint Test15", Verdict::Validates,
     "pathLenConstraint0CACert pathLenConstraint0SelfIssuedCACert "
     "ValidSelfIssuedpathLenConstraintTest15EE"},
    {"4.6.16", "Invalid Self-Issued pathLenConstraint Test16", Verdict::Fails,
     "pathLenConstraint0CACert pathLenConstraint0SelfIssuedCACert pathLenConstraint0subCA2Cert "
     "InvalidSelfIssuedpathLenConstraintTest16EE"},
    {"4.6.17", "Valid Self-Issued pathLenConstraint Test17", Verdict::Validates,
     "pathLenConstraint1CACert pathLenConstraint1SelfIssuedCACert pathLenConstraint1subCACert "
     "pathLenConstraint1SelfIssuedsubCACert ValidSelfIssuedpathLenConstraintTest17EE"},

    // 4.7 Key Usage
    {"4.7.1", "Invalid keyUsage Critical keyCertSign False Test1", Verdict::Fails,
     "keyUsageCriticalkeyCertSignFalseCACert InvalidkeyUsageCriticalkeyCertSignFalseTest1EE"},
    {"4.7.2", "Invalid keyUsage Not Critical keyCertSign False Test2", Verdict::Fails,
     "keyUsageNotCriticalkeyCertSignFalseCACert InvalidkeyUsageNotCriticalkeyCertSignFalseTest2EE"},
    {"4.7.3", "Valid keyUsage Not Critical Test3", Verdict::Validates,
     "keyUsageNotCriticalCACert ValidkeyUsageNotCriticalTest3EE"},
    {"4.7.4", "Invalid keyUsage Critical cRLSign False Test4", Verdict::Fails,
     "keyUsageCriticalcRLSignFalseCACert InvalidkeyUsageCriticalcRLSignFalseTest4EE"},
    {"4.7.5", "Invalid keyUsage Not Critical cRLSign False Test5", Verdict::Fails,
     "keyUsageNotCriticalcRLSignFalseCACert InvalidkeyUsageNotCriticalcRLSignFalseTest5EE"},

    // 4.13 Name Constraints
    {"4.13.1", "Valid DN nameConstraints Test1", Verdict::Validates,
     "nameConstraintsDN1CACert ValidDNnameConstraintsTest1EE"},
    {"4.13.2", "Invalid DN nameConstraints Test2", Verdict::Fails,
     "nameConstraintsDN1CACert InvalidDNnameConstraintsTest2EE"},
    {"4.13.3", "Invalid DN nameConstraints Test3", Verdict::Fails,
     "nameConstraintsDN1CACert InvalidDNnameConstraintsTest3EE"},
    {"4.13.4", "Valid DN nameConstraints Test4", Verdict::Validates,
     "nameConstraintsDN1CACert ValidDNnameConstraintsTest4EE"},
    {"4.13.5", "Valid DN nameConstraints Test5", Verdict::Validates,
     "nameConstraintsDN2CACert ValidDNnameConstraintsTest5EE"},
    {"4.13.6", "Valid DN nameConstraints Test6", Verdict::Validates,
     "nameConstraintsDN3CACert ValidDNnameConstraintsTest6EE"},
    {"4.13.7", "Invalid DN nameConstraints Test7", Verdict::Fails,
     "nameConstraintsDN3CACert InvalidDNnameConstraintsTest7EE"},
    {"4.13.8", "Invalid DN nameConstraints Test8", Verdict::Fails,
     "nameConstraintsDN4CACert InvalidDNnameConstraintsTest8EE"},
    {"4.13.9", "Invalid DN nameConstraints Test9", Verdict::Fails,
     "nameConstraintsDN4CACert InvalidDNnameConstraintsTest9EE"},
    {"4.13.10", "Invalid DN nameConstraints Test10", Verdict::Fails,
     "nameConstraintsDN5CACert InvalidDNnameConstraintsTest10EE"},
    {"4.13.11", "Valid DN nameConstraints Test11", Verdict::Validates,
     "nameConstraintsDN5CACert ValidDNnameConstraintsTest11EE"},
    {"4.13.12", "Invalid DN nameConstraints Test12", Verdict::Fails,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA1Cert InvalidDNnameConstraintsTest12EE"},
    {"4.13.13", "Invalid DN nameConstraints Test13", Verdict::Fails,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA2Cert InvalidDNnameConstraintsTest13EE"},
    {"4.13.14", "Valid DN nameConstraints Test14", Verdict::Validates,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA2Cert ValidDNnameConstraintsTest14EE"},
    {"4.13.15", "Invalid DN nameConstraints Test15", Verdict::Fails,
     "nameConstraintsDN3CACert nameConstraintsDN3subCA1Cert InvalidDNnameConstraintsTest15EE"},
    {"4.13.16", "Invalid DN nameConstraints Test16", Verdict::Fails,
     "nameConstraintsDN3CACert nameConstraintsDN3subCA1Cert InvalidDNnameConstraintsTest16EE"},
    {"4.13.17", "Invalid DN nameConstraints Test17", Verdict::Fails,
     "nameConstraintsDN3CACert nameConstraintsDN3subCA2Cert InvalidDNnameConstraintsTest17EE"},
    {"4.13.18", "Valid DN nameConstraints Test18", Verdict::Validates,
     "nameConstraintsDN3CACert nameConstraintsDN3subCA2Cert ValidDNnameConstraintsTest18EE"},
    {"4.13.19", "Valid Self-Issued DN nameConstraints Test19", Verdict::Validates,
     "nameConstraintsDN1CACert nameConstraintsDN1SelfIssuedCACert ValidDNnameConstraintsTest19EE"},
    {"4.13.20", "Invalid Self-Issued DN nameConstraints Test20", Verdict::Fails,
     "nameConstraintsDN1CACert nameConstraintsDN1SelfIssuedCACert "
     "InvalidDNnameConstraintsTest20EE"},
    {"4.13.21", "Valid RFC822 nameConstraints Test21", Verdict::Validates,
     "nameConstraintsRFC822CA1Cert ValidRFC822nameConstraintsTest21EE"},
    {"4.13.22", "Invalid RFC822 nameConstraints Test22", Verdict::Fails,
     "nameConstraintsRFC822CA1Cert InvalidRFC822nameConstraintsTest22EE"},
    {"4.13.23", "Valid RFC822 nameConstraints Test23", Verdict::Validates,
     "nameConstraintsRFC822CA2Cert ValidRFC822nameConstraintsTest23EE"},
    {"4.13.24", "Invalid RFC822 nameConstraints Test24", Verdict::Fails,
     "nameConstraintsRFC822CA2Cert InvalidRFC822nameConstraintsTest24EE"},
    {"4.13.25", "Valid RFC822 nameConstraints Test25", Verdict::Validates,
     "nameConstraintsRFC822CA3Cert ValidRFC822nameConstraintsTest25EE"},
    {"4.13.26", "Invalid RFC822 nameConstraints Test26", Verdict::Fails,
     "nameConstraintsRFC822CA3Cert InvalidRFC822nameConstraintsTest26EE"},
    {"4.13.27", "Valid DN and RFC822 nameConstraints Test27", Verdict::Validates,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA3Cert "
     "ValidDNandRFC822nameConstraintsTest27EE"},
    {"4.13.28", "Invalid DN and RFC822 nameConstraints Test28", Verdict::Fails,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA3Cert "
     "InvalidDNandRFC822nameConstraintsTest28EE"},
    {"4.13.29", "Invalid DN and RFC822 nameConstraints Test29", Verdict::Fails,
     "nameConstraintsDN1CACert nameConstraintsDN1subCA3Cert "
     "InvalidDNandRFC822nameConstraintsTest29EE"},
    {"4.13.30", "Valid DNS nameConstraints Test30", Verdict::Validates,
     "nameConstraintsDNS1CACert ValidDNSnameConstraintsTest30EE"},
    {"4.13.31", "Invalid DNS nameConstraints Test31", Verdict::Fails,
     "nameConstraintsDNS1CACert InvalidDNSnameConstraintsTest31EE"},
    {"4.13.32", "Valid DNS nameConstraints Test32", Verdict::Validates,
     "nameConstraintsDNS2CACert ValidDNSnameConstraintsTest32EE"},
    {"4.13.33", "Invalid DNS nameConstraints Test33", Verdict::Fails,
     "nameConstraintsDNS2CACert InvalidDNSnameConstraintsTest33EE"},
    {"4.13.34", "Valid URI nameConstraints Test34", Verdict::Validates,
     "nameConstraintsURI1CACert ValidURInameConstraintsTest34EE"},
    {"4.13.35", "Invalid URI nameConstraints Test35", Verdict::Fails,
     "nameConstraintsURI1CACert InvalidURInameConstraintsTest35EE"},
    {"4.13.36", "Valid URI nameConstraints Test36", Verdict::Validates,
     "nameConstraintsURI2CACert ValidURInameConstraintsTest36EE"},
    {"4.13.37", "Invalid URI nameConstraints Test37", Verdict::Fails,
     "nameConstraintsURI2CACert InvalidURInameConstraintsTest37EE"},
    {"4.13.38", "Invalid DNS nameConstraints Test38", Verdict::Fails,
     "nameConstraintsDNS1CACert InvalidDNSnameConstraintsTest38EE"},

    // 4.16 Private Certificate Extensions
    {"4.16.1", "Valid Unknown Not Critical Certificate Extension Test1", Verdict::Validates,
     "ValidUnknownNotCriticalCertificateExtensionTest1EE"},
    {"4.16.2", "Invalid Unknown Critical Certificate Extension Test2", Verdict::Fails,
     "InvalidUnknownCriticalCertificateExtensionTest2EE"},
};

constexpr Departure kDepartures[] = {
#if OPENSSL_VERSION_NUMBER >= 0x30000000L
    {"4.1.5", Verdict::Fails,
     "OpenSSL does not let a DSA key inherit its issuer's parameters; nor would the key be of use, "
     "since tokens are signed with RSA"},
#endif
    {"4.7.4", Verdict::Validates,
     "the path is sound; the suite expects the revocation list to be refused, and the resolver "
     "asks for none"},
    {"4.7.5", Verdict::Validates,
     "the path is sound; the suite expects the revocation list to be refused, and the resolver "
     "asks for none"},
};

constexpr LeftOut kLeftOut[] = {
    {"4.4", "Basic Certificate Revocation Tests", "the resolver asks for no revocation lists"},
    {"4.5", "Verifying Paths with Self-Issued Certificates",
     "the verdicts depend on revocation lists, and on which key signs them"},
    {"4.8", "Certificate Policies", "the resolver has no policies to ask for"},
    {"4.9", "Require Explicit Policy", "the resolver has no policies to ask for"},
    {"4.10", "Policy Mappings", "the resolver has no policies to ask for"},
    {"4.11", "Inhibit Policy Mapping", "the resolver has no policies to ask for"},
    {"4.12", "Inhibit Any Policy", "the resolver has no policies to ask for"},
    {"4.14", "Distribution Points", "the resolver asks for no revocation lists"},
    {"4.15", "Delta-CRLs", "the resolver asks for no revocation lists"},
};

}  // namespace

std::vector<Case> Cases() {
    return {std::begin(kCases), std::end(kCases)};
}

std::vector<Departure> Departures() {
    return {std::begin(kDepartures), std::end(kDepartures)};
}

std::vector<LeftOut> SectionsLeftOut() {
    return {std::begin(kLeftOut), std::end(kLeftOut)};
}

}  // namespace Pkits
