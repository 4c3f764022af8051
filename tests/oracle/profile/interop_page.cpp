#include "oracle/profile/interop_page.h"

#include "oracle/profile/plain_values.h"
#include "support/test_keys.h"
#include "support/token_forge.h"

#include <cstddef>
#include <stdexcept>

namespace InteropPage {
namespace {

using namespace Saml;
using TestKeys::CertificateNamed;

constexpr char kDocs[] = SAMLTOKEN_DOCS;

std::string ReplacedEverywhere(std::string text, const std::string& from, const std::string& to) {
    std::size_t at = text.find(from);
    if (at == std::string::npos) throw std::runtime_error("not there: " + from);
    for (; at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::string WithPresentDates(const std::string& text) {
    return ReplacedEverywhere(
        ReplacedEverywhere(text, "2024-05-01T08:00:00.000Z", Forge::FromNow(-60)),
        "2024-05-01T16:00:00.000Z", Forge::FromNow(3600));
}

}  // namespace

const LibXml2::RelaxNgGrammar& Grammar() {
    static const LibXml2::RelaxNgGrammar grammar(std::string(kDocs) + "/assertion.rng");
    return grammar;
}

std::vector<std::string> XmlBlocks() {
    const std::string page = TestKeys::ReadFile(std::string(kDocs) + "/interop.md");
    const std::string fence = "\n```xml\n";
    std::vector<std::string> blocks;
    for (std::size_t at = page.find(fence); at != std::string::npos; at = page.find(fence, at)) {
        at += fence.size();
        blocks.push_back(page.substr(at, page.find("\n```\n", at) - at));
    }
    return blocks;
}

std::string BearerTemplate() {
    return WithPresentDates(XmlBlocks().at(0));
}

std::string HolderOfKeyTemplate() {
    std::string text = XmlBlocks().at(0);
    const std::string end = "</saml:SubjectConfirmation>";
    const std::size_t from = text.find("    <saml:SubjectConfirmation ");
    text.replace(from, text.find(end) + end.size() - from, XmlBlocks().at(1));
    return WithPresentDates(
        Forge::Replaced(text, "MIIB", Oracle::ToBase64(*CertificateNamed("self-signed").der)));
}

}  // namespace InteropPage
