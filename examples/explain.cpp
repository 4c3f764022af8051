#include "explain.h"

#include "certificates_in_words.h"
#include "references_in_words.h"

#include <functional>
#include <list>
#include <memory>

namespace {

using namespace Saml::Xml;
using Security::KeyInfo;
using Security::KeyInfoResolver;

// Wide enough for every date, and small enough to be added to one.
constexpr std::int64_t kAnyTime = std::int64_t{1} << 40;

// Stands before the resolver and tells how many keys it offered; offers none without one.
class Witness final : public KeyInfoResolver {
  public:
    explicit Witness(KeyInfoResolver* resolver = nullptr) : resolver_(resolver) {}
    void Resolve(KeyInfo* keyInfo, std::list<Saml::ByteBlob>& keys) override {
        keys.clear();
        if (resolver_ != nullptr) resolver_->Resolve(keyInfo, keys);
        offered = keys.size();
    }
    std::size_t offered = 0;

  private:
    KeyInfoResolver* const resolver_;
};

class Walk {
  public:
    Walk(const std::string& text, bool strictLimits, KeyInfoResolver& resolver)
        : text_(text), strictLimits_(strictLimits), resolver_(resolver) {}

    Report Run() {
        const bool isXml = Take("XML", true, [this](Step& step) { Parse(step); });
        const bool isToken = Take("profile", isXml, [this](Step&) { Judge(kAnyTime); });
        Take("validity", isToken, [this](Step& step) { CheckValidity(step); });
        const bool isSigned = Take("signature", isXml, [this](Step& step) { ReadSignature(step); });
        const bool hold = Take("references", isSigned, [this](Step& step) {
            DescribeReferences(text_, *signature_, step);
        });
        Take("certificates", isSigned, [this](Step& step) { DescribeCertificates(step); });
        const bool isTrusted = Take("trust", isSigned, [this](Step& step) { AskForTrust(step); });
        Take("signature value", hold && isTrusted, [this](Step&) { VerifyValue(); });
        report_.accepted = Take("verdict", true, [this](Step& step) {
            Describe(*CreateToken(text_, strictLimits_, resolver_, Saml::DefaultClockTolerance),
                     step);
        });
        if (!report_.accepted) report_.refusal = report_.steps.back().why;
        return std::move(report_);
    }

  private:
    bool Take(const char* name, bool isReached, const std::function<void(Step&)>& check) {
        Step step{name, isReached ? State::Passed : State::NotReached};
        try {
            if (isReached) check(step);
        } catch (const Finding& finding) {
            step.state = State::Failed;
            step.why = Printable(finding.what());
        } catch (const XMLParseException& reason) {
            step.state = State::Failed;
            step.why = InWords(reason) + " (line " + std::to_string(reason.line) + ")";
        } catch (const std::exception& reason) {
            step.state = State::Failed;
            step.why = InWords(reason);
        }
        report_.steps.push_back(step);
        return step.state == State::Passed;
    }

    void Parse(Step& step) {
        step.Tell("bytes", std::to_string(text_.size()));
        document_ = strictLimits_ ? ParseWithinLimits(text_) : ParseAnew(text_);
        step.Tell("root", document_->GetRootElement()->GetQualifiedName());
    }

    // Whatever comes before the signature's verification; which then finds no key.
    void Judge(std::int64_t tolerance) const {
        try {
            const boost::intrusive_ptr<Witness> noKey(new Witness);
            CreateToken(text_, strictLimits_, *noKey, tolerance);
        } catch (const Saml::InvalidSignatureException&) {
        }
    }

    void CheckValidity(Step& step) const {
        Saml::DateTime now = Saml::DateTime::GetUtcDateTime();
        step.Tell("now", now.value());
        std::string value;
        for (const char* const bound : {"NotBefore", "NotOnOrAfter"})
            if (EvaluateSimplePath(document_.get(), std::string("*/Conditions/@") + bound, value))
                step.Tell(bound, value);
        step.Tell("tolerance", std::to_string(Saml::DefaultClockTolerance) + " seconds");
        Judge(Saml::DefaultClockTolerance);
    }

    void ReadSignature(Step& step) {
        signature_ = SignatureOf(*document_);
        step.Tell("method", signature_->GetSignatureMethod());
        step.Tell("canonical", signature_->GetCanonicalizationMethod());
    }

    void DescribeCertificates(Step& step) const {
        std::vector<std::string> texts;
        EvaluateMultiPath(document_.get(), "*/Signature/KeyInfo/X509Data/X509Certificate", texts);
        if (texts.empty()) step.Tell("certificates", "none was sent");
        for (const std::string& text : texts) {
            std::string error;
            DescribeCertificate(Saml::Base64::Decode(text, error), step);
        }
    }

    // On a copy whose digests are made to hold: the resolver is asked only when they do.
    void AskForTrust(Step& step) const {
        const auto document = ParseAnew(text_);
        const auto signature = SignatureOf(*document);
        UpdateDigests(*signature);
        const boost::intrusive_ptr<Witness> witness(new Witness(&resolver_));
        signature->Verify(witness.get(), {});
        step.Tell("keys offered", std::to_string(witness->offered));
    }

    void VerifyValue() const {
        if (!signature_->Verify(&resolver_, {}))
            throw Finding("No key that is offered verifies it.");
    }

    const std::string& text_;
    const bool strictLimits_;
    KeyInfoResolver& resolver_;
    boost::intrusive_ptr<Document> document_;
    boost::intrusive_ptr<Security::Signature> signature_;
    Report report_;
};

}  // namespace

Report Explain(const std::string& text, bool strictLimits, KeyInfoResolver& resolver) {
    return Walk(text, strictLimits, resolver).Run();
}
