#include "oracle/profile/relax_ng_grammar.h"

#include "oracle/canonicalization/libxml2_documents.h"

#include <libxml/parser.h>
#include <libxml/relaxng.h>

namespace LibXml2 {
namespace {

using Saml::Xml::Security::FreeWith;
using GrammarParserHandle =
    std::unique_ptr<xmlRelaxNGParserCtxt, FreeWith<xmlRelaxNGFreeParserCtxt>>;
using SchemaHandle = std::unique_ptr<xmlRelaxNG, FreeWith<xmlRelaxNGFree>>;
using ValidatorHandle = std::unique_ptr<xmlRelaxNGValidCtxt, FreeWith<xmlRelaxNGFreeValidCtxt>>;

}  // namespace

struct RelaxNgGrammar::Schema {
    SchemaHandle handle;
};

RelaxNgGrammar::RelaxNgGrammar(const std::string& path) {
    KeepQuiet();
    const GrammarParserHandle parser(xmlRelaxNGNewParserCtxt(path.c_str()));
    SchemaHandle schema(parser ? xmlRelaxNGParse(parser.get()) : nullptr);
    if (!schema) throw Failure("no grammar: " + path);
    schema_.reset(new Schema{std::move(schema)});
}

RelaxNgGrammar::~RelaxNgGrammar() = default;

std::string RelaxNgGrammar::FaultOf(const std::string& text) const {
    KeepQuiet();
    const DocumentHandle document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr,
                                                nullptr, XML_PARSE_NOENT | XML_PARSE_NONET));
    if (!document) throw Failure("not well-formed");
    const ValidatorHandle validator(xmlRelaxNGNewValidCtxt(schema_->handle.get()));
    const int verdict = validator ? xmlRelaxNGValidateDoc(validator.get(), document.get()) : -1;
    if (verdict < 0) throw Failure("not validated");
    return verdict == 0 ? std::string() : LastError();
}

}  // namespace LibXml2
