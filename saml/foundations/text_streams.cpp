#include "saml/foundations.h"
#include "saml/foundations/wrapping.h"

#include <algorithm>
#include <cstddef>

namespace Saml {

Reader::~Reader() = default;
Writer::~Writer() = default;

StringReader::StringReader(const std::string& text) : data(text), position(0) {}
StringReader::~StringReader() = default;

int StringReader::Read(char* buffer, int size) {
    if (size < 1) return 0;
    const std::int64_t remaining = std::int64_t{WrapTo32Bits(data.size())} - position;
    if (remaining < 1) return -1;

    const int count = static_cast<int>(std::min<std::int64_t>(size, remaining));
    // A position that the caller set below 0 makes `copy` throw instead of reading elsewhere.
    data.copy(buffer, static_cast<std::size_t>(count), static_cast<std::size_t>(position));
    position += count;
    return count;
}

StringWriter::StringWriter() = default;
StringWriter::~StringWriter() = default;

void StringWriter::Write(const char* bytes, int length) {
    if (length > 0) data.append(bytes, static_cast<std::size_t>(length));
}

}  // namespace Saml
