// sign_token --key KEY.pem --certificate CERT.pem [OPTION]... [OUTPUT.xml]
//
// A small token service: fills an assertion, signs it and writes the token; --help tells the
// options. Exit status: 0 done, 1 failed, 2 unusable arguments; the reason is one line on standard
// error.

#include "assertion_template.h"
#include "sign_token_arguments.h"
#include <saml/token.h>

#include <openssl/rand.h>

#include <array>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

namespace {

using namespace Saml::Xml;
using namespace Saml::Xml::Security;

enum ExitStatus : int { Done = 0, Failed = 1, UnusableArguments = 2 };

// Drawn at random, so that no two tokens share one: replay caches know a token by it. The
// underscore makes it a name whatever follows (SAML core 1.3.4, XML Schema's ID).
std::string NewIdentifier() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), bytes.size()) != 1) throw std::runtime_error("no random bytes");
    constexpr char kDigits[] = "0123456789abcdef";
    std::string identifier = "_";
    for (const unsigned char byte : bytes) {
        identifier += kDigits[byte / 16];
        identifier += kDigits[byte % 16];
    }
    return identifier;
}

// An enveloped signature behind the issuer: its reference names the assertion that it stands in.
void Sign(ElementNode& assertion, const std::string& id, const Arguments& arguments) {
    boost::intrusive_ptr<Signature> signature;
    CreateBlankSignature(&assertion, Algorithm::ExclusiveC14N, Algorithm::RsaSha256, "ds",
                         signature);
    if (ElementNode* const placeholder = assertion.GetFirstChildElement("Signature"))
        assertion.RemoveChild(placeholder);
    assertion.InsertAfter(signature->GetElement(), &AssertionTemplate::Child(assertion, "Issuer"));

    boost::intrusive_ptr<SignatureReference> reference;
    signature->AddReference("#" + id, Algorithm::Sha256, reference);
    reference->AddEnvelopedSignatureTransform();
    reference->SetCanonicalizationMethod(Algorithm::ExclusiveC14N);
    signature->SetKeyInfo(arguments.certificates);
    signature->Sign(arguments.key);

    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({arguments.certificates.front()}, resolver);
    if (!signature->Verify(resolver.get(), {}))
        throw UnusableArgument("The certificate does not belong to the key");
}

// A token service looks at its tokens as those do who get them: what is wrong with the certificate,
// the template or a value shows here and not at their doors. The window alone is not looked at.
void ExpectAcceptable(const std::string& token, const Saml::ByteBlob& certificate) {
    boost::intrusive_ptr<KeyInfoResolver> resolver;
    CreateTrustSetKeyResolver({certificate}, resolver);
    constexpr std::int64_t kAnyTime = std::numeric_limits<std::int32_t>::max();  // seconds
    try {
        Saml::CreateSamlToken(token, resolver.get(), kAnyTime);
    } catch (Saml::ParseException* thrown) {  // one refusal is thrown as a pointer
        throw Saml::ParseException(*std::unique_ptr<Saml::ParseException>(thrown));
    }
}

std::string Issue(const Arguments& arguments) {
    try {
        const std::string id = NewIdentifier();
        const boost::intrusive_ptr<Document> document = AssertionTemplate::Fill(id, arguments);
        Sign(*document->GetRootElement(), id, arguments);
        boost::intrusive_ptr<Canonicalizer> canonicalizer;
        CreateCanonicalizer(Algorithm::InclusiveC14N, canonicalizer);
        Saml::StringWriter token;  // what was signed; Node::Write is for people and loses things
        canonicalizer->Canonicalize(document->GetRootElement(), token);
        ExpectAcceptable(token.data, arguments.certificates.front());
        return token.data;
    } catch (const SignatureGenerationException& reason) {
        throw UnusableArgument(std::string("The key cannot sign: ") + reason.what());
    } catch (const SignatureVerificationException&) {
        throw UnusableArgument("The certificate is not valid now or holds no RSA key");
    } catch (const Saml::Exception& reason) {  // all that went in came from the arguments
        throw UnusableArgument(std::string("The token would be refused: ") + reason.what());
    }
}

// The file is there in full or not at all, and only its owner may read it: a bearer token speaks
// for whoever has it.
void WriteFile(const std::string& path, const std::string& token) {
    if (std::filesystem::exists(path) && !std::filesystem::is_regular_file(path))
        throw std::runtime_error(path + ": is there and no file");  // a device, for example
    const std::string draft = path + NewIdentifier();
    umask(077);
    std::ofstream file(draft, std::ios::binary);
    file << token << '\n';
    file.close();
    std::error_code failure;
    if (file) std::filesystem::rename(draft, path, failure);
    if (file && !failure) return;
    std::filesystem::remove(draft, failure);
    throw std::runtime_error(path + ": cannot be written");
}

void WriteToStandardOutput(const std::string& token) {
    std::cout << token << '\n' << std::flush;
    if (!std::cout) throw std::runtime_error("standard output: cannot be written");
}

ExitStatus Complain(const std::exception& reason, ExitStatus status) {
    std::cerr << "sign_token: " << reason.what() << '\n';
    return status;
}

}  // namespace

int main(int count, char** values) {
    try {
        const std::optional<Arguments> arguments = ReadArguments(count, values);
        if (!arguments) return Done;
        const std::string token = Issue(*arguments);
        if (arguments->output.empty())
            WriteToStandardOutput(token);
        else
            WriteFile(arguments->output, token);
        return Done;
    } catch (const UnusableArgument& reason) {
        return Complain(reason, UnusableArguments);
    } catch (const std::exception& reason) {
        return Complain(reason, Failed);
    }
}
