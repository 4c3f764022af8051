#include "oracle/values/pem_layouts.h"

#include "oracle/values/openssl_key_kinds.h"
#include "saml/security.h"
#include "support/test_keys.h"

#include <gtest/gtest.h>
#include <openssl/opensslv.h>

#include <cstddef>
#include <iostream>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

// What the command line reads as PEM is read, and nothing else, with the same bytes.
namespace Saml::Xml::Security {
namespace {

using OpenSslKeys::Key;
using OpenSslKeys::KeyOf;
using OpenSslKeys::KindNamed;
using PemLayouts::Layout;
using PemLayouts::Objects;
using TestKeys::OpenSsl;
using TestKeys::PathOf;
using TestKeys::ReadFile;

using Conversion = void (*)(const std::string& pem, ByteBlob& result);

/// One of the functions under test, and the command that does the same.
struct Reading {
    const char* name;
    Conversion convert;
    const char* command;  ///< Writes DER.
    Objects (*objects)(const Key& key, const Key& another);
};
void PrintTo(const Reading& reading, std::ostream* out) {
    *out << reading.name;
}

std::string Traditional(const Key& key) {
    return OpenSsl("rsa -traditional -in " + key.path);
}

std::string PrivateAndPublic(const Key& key) {
    return ReadFile(key.path) + ReadFile(key.publicPath);
}
std::string PublicAndCertificate(const Key& key) {
    return ReadFile(key.publicPath) + ReadFile(key.certificatePath);
}
std::string PrivateAndCertificate(const Key& key) {
    return ReadFile(key.path) + ReadFile(key.certificatePath);
}

std::vector<Reading> Readings() {
    return {
        {"Certificate", &CertificatePEMToBlob, "x509",
         [](const Key& key, const Key& another) {
             return Objects{ReadFile(key.certificatePath), PrivateAndPublic(key),
                            ReadFile(another.certificatePath) + PrivateAndPublic(another)};
         }},
        {"PrivateKey", &PrivateKeyPEMToBlob, "rsa -traditional",
         [](const Key& key, const Key& another) {
             return Objects{ReadFile(key.path), PublicAndCertificate(key),
                            ReadFile(another.path) + PublicAndCertificate(another)};
         }},
        {"TraditionalPrivateKey", &PrivateKeyPEMToBlob, "rsa -traditional",
         [](const Key& key, const Key& another) {
             return Objects{Traditional(key), PublicAndCertificate(key),
                            ReadFile(another.path) + PublicAndCertificate(another)};
         }},
        {"PublicKey", &PublicKeyPEMToBlob, "rsa -pubin -RSAPublicKey_out",
         [](const Key& key, const Key& another) {
             return Objects{ReadFile(key.publicPath), PrivateAndCertificate(key),
                            ReadFile(another.publicPath) + PrivateAndCertificate(another)};
         }},
    };
}

std::optional<std::string> Ours(Conversion convert, const std::string& pem) {
    ByteBlob der;
    try {
        convert(pem, der);
    } catch (const Exception&) {
        return std::nullopt;
    }
    return std::string(der->begin(), der->end());
}

std::optional<std::string> Theirs(const std::string& command, const std::string& pem) {
    TestKeys::WriteFile(PathOf("layout.pem"), pem);
    try {
        return OpenSsl(command + " -outform DER -in " + PathOf("layout.pem"));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

const char* Verdict(const std::optional<std::string>& der) {
    return der ? "reads" : "refuses";
}

/// The command line is the system's; the library may have been built with an older libcrypto, which
/// takes no byte order mark.
bool IsBeyondOurLibcrypto(const Layout& layout) {
    return OPENSSL_VERSION_NUMBER < 0x30000000L && layout.name == std::string("ByteOrderMark");
}

class PemLayout : public testing::TestWithParam<Reading> {};

TEST_P(PemLayout, IsReadAsTheCommandLineReadsIt) {
    const Reading& reading = GetParam();
    const Objects objects =
        reading.objects(KeyOf(KindNamed("Rsa1024With65537")), KeyOf(KindNamed("Rsa1024With17")));
    const std::optional<std::string> der = Theirs(reading.command, objects.block);
    ASSERT_TRUE(der.has_value());

    std::size_t read = 0;
    std::size_t refused = 0;
    for (const Layout& layout : PemLayouts::All()) {
        const std::string pem = layout.write(objects);
        const std::optional<std::string> ours = Ours(reading.convert, pem);
        const std::optional<std::string> theirs = Theirs(reading.command, pem);
        if (IsBeyondOurLibcrypto(layout)) {
            EXPECT_EQ(ours, std::nullopt) << layout.name;
            continue;
        }
        EXPECT_EQ(ours, theirs) << layout.name << ": the library " << Verdict(ours) << ", openssl "
                                << Verdict(theirs) << "\n"
                                << pem;
        if (layout.isHarmless) {
            EXPECT_EQ(theirs, der) << layout.name << "\n" << pem;
        }
        ++(theirs ? read : refused);
    }
    std::cout << read << " layouts read, " << refused << " refused\n";
    RecordProperty("read", static_cast<int>(read));
    RecordProperty("refused", static_cast<int>(refused));
    EXPECT_GT(read, 13u);  // beside the harmless ones
    EXPECT_GT(refused, 10u);
}

INSTANTIATE_TEST_SUITE_P(Oracle, PemLayout, testing::ValuesIn(Readings()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Xml::Security
