#pragma once

#include <memory>
#include <string>

namespace LibXml2 {

/// A RELAX NG grammar in XML syntax, as libxml2 reads it.
class RelaxNgGrammar {
  public:
    /// \throws std::runtime_error  The file holds no grammar; with what libxml2 says.
    explicit RelaxNgGrammar(const std::string& path);
    ~RelaxNgGrammar();
    RelaxNgGrammar(const RelaxNgGrammar&) = delete;
    RelaxNgGrammar& operator=(const RelaxNgGrammar&) = delete;

    /// Why the document of `text` does not follow the grammar; empty when it does.
    /// \throws std::runtime_error  The text is not well-formed.
    std::string FaultOf(const std::string& text) const;

  private:
    struct Schema;
    std::unique_ptr<const Schema> schema_;
};

}  // namespace LibXml2
