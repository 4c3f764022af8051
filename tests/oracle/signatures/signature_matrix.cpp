#include "oracle/signatures/signature_matrix.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

namespace SignatureMatrix {
namespace {

constexpr std::size_t kCellsForXmlSec1 = 20;
constexpr std::size_t kCellsForOurselves = 10;

/// All the choices that the form of a signature is made of.
struct Form {
    Uri uri;
    Style style;
    PrefixList list;
};

std::vector<Form> Forms() {
    std::vector<Form> forms;
    for (const Uri& uri : kUris)
        for (const Style& style : kStyles)
            for (const PrefixList& list : kPrefixLists)
                if (CanMeet(uri, style)) forms.push_back({uri, style, list});
    return forms;
}

template <class Row, std::size_t count>
std::size_t PlaceOf(const char* name, const Row (&table)[count]) {
    const auto* const found = std::find_if(
        table, table + count, [name](const Row& row) { return std::strcmp(row.name, name) == 0; });
    return static_cast<std::size_t>(found - table);
}

/// Each method and key size goes on in the forms where the one before it stopped, with the digests
/// moved on by one. Seven, prime to the count of the forms, mixes them.
template <std::size_t digests>
std::vector<Cell> Cells(const Method& method, const KeySize& size, const Digest (&digest)[digests],
                        std::size_t count) {
    const std::vector<Form> forms = Forms();
    const std::size_t shard =
        PlaceOf(method.name, kMethods) * std::size(kKeySizes) + PlaceOf(size.name, kKeySizes);
    std::vector<Cell> cells;
    for (std::size_t i = 0; i != count; ++i) {
        const Form& form = forms[(shard * count + i) * 7 % forms.size()];
        const Kind& kind = kKinds[(i + i / std::size(kKinds)) % std::size(kKinds)];
        cells.push_back(
            {method, digest[(shard + i) % digests], size, form.uri, form.style, form.list, kind});
    }
    return cells;
}

}  // namespace

std::vector<std::string> Cell::Names() const {
    return {method.name, digest.name, size.name, uri.name, style.name, list.name, kind.name};
}

std::string Cell::Name() const {
    std::string all;
    for (const std::string& name : Names())
        all += (all.empty() ? "" : " ") + name;
    return all;
}

std::string Cell::Prefixes() const {
    std::string words = list.words;
    const std::size_t place = words.find('@');
    if (place == std::string::npos) return words;
    return words.replace(place, 1, style.samlPrefix[0] == '\0' ? "#default" : style.samlPrefix);
}

bool CanMeet(const Uri& uri, const Style& style) {
    return uri.namesTheAssertion || !style.declaredAbove;
}

std::vector<Cell> CellsForXmlSec1(const Method& method, const KeySize& size) {
    return Cells(method, size, kDigests, kCellsForXmlSec1);
}

std::vector<Cell> CellsForOurselves(const Method& method, const KeySize& size) {
    return Cells(method, size, kOwnDigests, kCellsForOurselves);
}

}  // namespace SignatureMatrix
