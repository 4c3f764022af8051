#include "support/test_keys.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace Saml::TestKeys {
namespace {

constexpr char kAuthority[] =
    "basicConstraints=critical,CA:TRUE\n"
    "keyUsage=critical,keyCertSign,cRLSign\n"
    "subjectKeyIdentifier=hash\n"
    "authorityKeyIdentifier=keyid\n";
/// The identifier of the intermediate's key is a fixed one, so that a forger can copy it.
constexpr char kIntermediate[] =
    "basicConstraints=critical,CA:TRUE\n"
    "keyUsage=critical,keyCertSign,cRLSign\n"
    "subjectKeyIdentifier=496E7465726D656469617465\n";
constexpr char kIntermediateThatIsNoCa[] =
    "basicConstraints=critical,CA:FALSE\n"
    "keyUsage=critical,keyCertSign\n"
    "subjectKeyIdentifier=496E7465726D656469617465\n";
/// "none" keeps openssl from adding identifiers on its own.
constexpr char kAuthorityWithoutIdentifiers[] =
    "basicConstraints=critical,CA:TRUE\n"
    "keyUsage=critical,keyCertSign\n"
    "subjectKeyIdentifier=none\n"
    "authorityKeyIdentifier=none\n";
constexpr char kAuthorityWithoutCertSign[] =
    "basicConstraints=critical,CA:TRUE\n"
    "keyUsage=critical,cRLSign\n"
    "subjectKeyIdentifier=none\n";
constexpr char kAuthorityForLeavesOnly[] =
    "basicConstraints=critical,CA:TRUE,pathlen:0\n"
    "keyUsage=critical,keyCertSign\n"
    "subjectKeyIdentifier=hash\n";
constexpr char kNoCa[] =
    "basicConstraints=critical,CA:FALSE\n"
    "keyUsage=critical,keyCertSign\n"
    "subjectKeyIdentifier=none\n";
constexpr char kWithoutBasicConstraints[] =
    "extendedKeyUsage=codeSigning\n"
    "subjectKeyIdentifier=none\n";
constexpr char kLeaf[] =
    "basicConstraints=CA:FALSE\n"
    "keyUsage=digitalSignature\n"
    "subjectKeyIdentifier=hash\n"
    "authorityKeyIdentifier=keyid\n";
constexpr char kLeafWithoutIdentifiers[] =
    "basicConstraints=CA:FALSE\n"
    "keyUsage=digitalSignature\n"
    "subjectKeyIdentifier=none\n"
    "authorityKeyIdentifier=none\n";

/// Two hierarchies share nothing: root > intermediate > (leaf, lower > leaf-of-lower), and the
/// attacker's. "false-..." certificates are the attacker's and bear the names of genuine ones.
constexpr CertificateForm kForms[] = {
    {"root", "Root", "root", nullptr, kAuthority},
    {"intermediate", "Intermediate", "intermediate", "root", kIntermediate},
    {"lower", "Lower", "lower", "intermediate", kAuthority},
    {"leaf", "Signer", "leaf", "intermediate", kLeaf, Validity::Current, "1001"},
    {"leaf-of-root", "Signer", "leaf", "root", kLeaf},
    {"leaf-of-lower", "Signer", "leaf", "lower", kLeaf},
    {"leaf-1024", "Signer", "rsa1024", "intermediate", kLeaf},
    {"leaf-2048", "Signer", "rsa2048", "intermediate", kLeaf},
    {"leaf-3072", "Signer", "rsa3072", "intermediate", kLeaf},
    {"leaf-4096", "Signer", "rsa4096", "intermediate", kLeaf},
    {"ec-leaf", "EC Signer", "ec", "intermediate", kLeaf},

    {"expired-root", "Root", "root", nullptr, kAuthority, Validity::Expired},
    {"expired-intermediate", "Intermediate", "intermediate", "root", kIntermediate,
     Validity::Expired},
    {"future-intermediate", "Intermediate", "intermediate", "root", kIntermediate,
     Validity::NotYetValid},
    {"expired-leaf", "Signer", "leaf", "intermediate", kLeaf, Validity::Expired},
    {"future-leaf", "Signer", "leaf", "intermediate", kLeaf, Validity::NotYetValid},

    {"self-signed", "Lone Signer", "leaf", nullptr, kLeaf},
    {"self-signed-ca", "Lone Authority", "leaf", nullptr, kAuthority},
    {"self-signed-v1", "Old Signer", "leaf", nullptr, nullptr},
    {"self-signed-expired", "Lone Signer", "leaf", nullptr, kLeaf, Validity::Expired},
    {"self-signed-future", "Lone Signer", "leaf", nullptr, kLeaf, Validity::NotYetValid},
    {"ec-self-signed", "EC Signer", "ec", nullptr, kLeaf},
    {"rsa-pss-self-signed", "RSA-PSS Signer", "rsa-pss", nullptr, kLeaf},
    {"ed25519-self-signed", "Ed25519 Signer", "ed25519", nullptr, kLeaf},

    {"twin-of-intermediate-no-ca", "Intermediate", "intermediate", "root", kIntermediateThatIsNoCa},
    {"authority-sound", "Authority", "lower", "root", kAuthorityWithoutIdentifiers},
    {"authority-no-ca", "Authority", "lower", "root", kNoCa},
    {"authority-no-cert-sign", "Authority", "lower", "root", kAuthorityWithoutCertSign},
    {"authority-no-basic-constraints", "Authority", "lower", "root", kWithoutBasicConstraints},
    {"leaf-of-authority", "Signer", "leaf", "authority-sound", kLeafWithoutIdentifiers},

    {"narrow", "Narrow", "intermediate", "root", kAuthorityForLeavesOnly},
    {"leaf-of-narrow", "Signer", "leaf", "narrow", kLeaf},
    {"below-narrow", "Below Narrow", "lower", "narrow", kAuthority},
    {"leaf-below-narrow", "Signer", "leaf", "below-narrow", kLeaf},

    {"same-name-a", "Same Name", "root", nullptr, kAuthority},
    {"same-name-b", "Same Name", "intermediate", nullptr, kAuthority},
    {"leaf-of-a", "Signer", "leaf", "same-name-a", kLeaf},
    {"leaf-of-b", "Signer", "leaf", "same-name-b", kLeaf},
    {"leaf-of-a-without-id", "Signer", "leaf", "same-name-a", kLeafWithoutIdentifiers},
    {"leaf-of-b-without-id", "Signer", "leaf", "same-name-b", kLeafWithoutIdentifiers},

    {"attacker-root", "Attacker Root", "attacker", nullptr, kAuthority},
    {"attacker-intermediate", "Attacker Intermediate", "attacker", "attacker-root", kAuthority},
    {"attacker-leaf", "Attacker", "attacker", "attacker-intermediate", kLeaf},
    {"false-self-signed", "Lone Signer", "attacker", nullptr, kLeaf},
    {"false-root", "Root", "attacker", nullptr, kAuthority},
    {"false-intermediate", "Intermediate", "attacker", nullptr, kIntermediate},
    {"false-leaf", "Signer", "attacker", "false-intermediate", kLeafWithoutIdentifiers},
    {"false-leaf-with-id", "Signer", "attacker", "false-intermediate", kLeaf},
    {"false-lower", "Lower", "attacker", "false-intermediate", kAuthority},
    {"leaf-of-false-lower", "Attacker", "attacker", "false-lower", kLeaf},
    {"clone-of-leaf", "Signer", "attacker", "false-intermediate", kLeaf, Validity::Current, "1001"},
    {"issued-clone-of-leaf", "Signer", "attacker", "intermediate", kLeaf, Validity::Current,
     "1001"},
};

/// The kinds of keys that have no form of RSA's own.
bool IsRsa(const std::string& name) {
    return name != "rsa-pss" && name != "ec" && name != "ed25519";
}

std::map<std::string, Certificate> madeCertificates;  // by name

class Folder {
  public:
    Folder() {
        std::random_device random;
        std::ostringstream name;
        name << "samltoken-test-keys-" << std::hex << random() << random();
        path_ = std::filesystem::temp_directory_path() / name.str();
        if (!std::filesystem::create_directory(path_))
            throw std::runtime_error("exists already: " + path_.string());
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string File(const std::string& name) const { return (path_ / name).generic_string(); }

  private:
    std::filesystem::path path_;
};

std::string Quoted(const std::string& path) {
    return '"' + path + '"';
}

/// `openssl ca` is the one command that sets both ends of the validity period.
std::string Period(Validity validity) {
    switch (validity) {
        case Validity::Expired:
            return " -startdate 20100101000000Z -enddate 20110101000000Z";
        case Validity::NotYetValid:
            return " -startdate 20900101000000Z -enddate 20990101000000Z";
        case Validity::Current:
            break;
    }
    return " -startdate 20200101000000Z -enddate 20990101000000Z";
}

/// A text of openssl's, which ends lines as the platform does.
std::string PlainLines(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

std::string SerialOf(const CertificateForm& form) {
    if (form.serial != nullptr) return form.serial;
    std::ostringstream serial;
    serial << std::hex << (std::hash<std::string>()(form.name) & 0xffffffU);
    std::string digits = serial.str();
    return digits.size() % 2 == 0 ? digits : '0' + digits;
}

std::string Configuration(const CertificateForm& form, const std::string& base) {
    std::string text = "[req]\nprompt=no\ndistinguished_name=name\n[name]\nCN=";
    text += form.subject;
    text += "\n[ca]\ndefault_ca=this\n[this]\ndefault_md=sha256\npolicy=any\nunique_subject=no\n";
    text += "database=" + base + ".index\nserial=" + base + ".serial\n";
    text += "new_certs_dir=" + PathOf(".") + "\n";
    if (form.extensions != nullptr) text += "x509_extensions=extensions\n";
    text += "[any]\ncommonName=supplied\n";
    if (form.extensions != nullptr) text += std::string("[extensions]\n") + form.extensions;
    return text;
}

Key ReadKey(const std::string& name) {
    Key key;
    key.pemPath = PathOf(name + ".key");
    key.pem = PlainLines(ReadFile(std::string(SAMLTOKEN_TEST_KEYS) + "/" + name + ".pem"));
    WriteFile(key.pemPath, key.pem);
    const std::string from = " -in " + Quoted(key.pemPath);
    key.publicPem = OpenSslText("pkey -pubout" + from);
    key.privateKey = ToBlob(OpenSsl("pkey -traditional -outform DER" + from));
    if (IsRsa(name)) key.publicKey = ToBlob(OpenSsl("rsa -RSAPublicKey_out -outform DER" + from));
    return key;
}

Certificate CreateCertificate(const CertificateForm& form) {
    const std::string base = PathOf(form.name);
    WriteFile(base + ".cnf", Configuration(form, base));
    WriteFile(base + ".index", "");
    WriteFile(base + ".serial", SerialOf(form) + "\n");

    Certificate certificate;
    certificate.key = &KeyNamed(form.key);
    certificate.pemPath = base + ".pem";

    std::string signedBy = " -selfsign -keyfile " + Quoted(certificate.key->pemPath);
    if (form.issuer != nullptr) {
        const Certificate& issuer = CertificateNamed(form.issuer);
        signedBy = " -cert " + Quoted(issuer.pemPath) + " -keyfile " + Quoted(issuer.key->pemPath);
    }
    const std::string configured = " -config " + Quoted(base + ".cnf");
    OpenSsl("req -new" + configured + " -key " + Quoted(certificate.key->pemPath) + " -out " +
            Quoted(base + ".csr"));
    OpenSsl("ca -batch -notext" + configured + signedBy + Period(form.validity) + " -in " +
            Quoted(base + ".csr") + " -out " + Quoted(certificate.pemPath));
    certificate.pem = PlainLines(ReadFile(certificate.pemPath));
    certificate.der = ToBlob(OpenSsl("x509 -outform DER -in " + Quoted(certificate.pemPath)));
    return certificate;
}

}  // namespace

std::string PathOf(const std::string& fileName) {
    static const Folder folder;
    return folder.File(fileName);
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string OpenSsl(const std::string& arguments) {
    const std::string output = PathOf("output");
    const std::string complaints = PathOf("complaints");
    const std::string command =
        "openssl " + arguments + " > " + Quoted(output) + " 2> " + Quoted(complaints);
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(command + "\n" + ReadFile(complaints));
    return ReadFile(output);
}

std::string OpenSslText(const std::string& arguments) {
    return PlainLines(OpenSsl(arguments));
}

ByteBlob ToBlob(const std::string& bytes) {
    return std::make_shared<const std::vector<unsigned char>>(bytes.begin(), bytes.end());
}

const Key& KeyNamed(const std::string& name) {
    static std::map<std::string, Key> keys;
    const auto found = keys.find(name);
    return found != keys.end() ? found->second : keys.emplace(name, ReadKey(name)).first->second;
}

const Certificate& CertificateNamed(const std::string& name) {
    const auto made = madeCertificates.find(name);
    if (made != madeCertificates.end()) return made->second;
    const auto* const form =
        std::find_if(std::begin(kForms), std::end(kForms),
                     [&name](const CertificateForm& candidate) { return name == candidate.name; });
    if (form == std::end(kForms)) throw std::runtime_error("no certificate is called " + name);
    return Issue(*form);
}

const Certificate& Issue(const CertificateForm& form) {
    const auto made = madeCertificates.find(form.name);
    if (made != madeCertificates.end()) return made->second;
    const Certificate certificate = CreateCertificate(form);  // this may make others first
    return madeCertificates.emplace(form.name, certificate).first->second;
}

}  // namespace Saml::TestKeys
