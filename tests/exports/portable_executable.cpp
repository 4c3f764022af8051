#include "portable_executable.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

// Offsets and sizes as the section "PE Format" of Microsoft's documentation lists them.
constexpr std::size_t kPlaceOfHeaders = 0x3c;
constexpr std::size_t kSizeOfFileHeader = 24;  // with the signature before it
constexpr std::size_t kSizeOfSectionHeader = 40;
constexpr std::size_t kSizeOfImportEntry = 20;
constexpr std::uint32_t kMagicOf64Bits = 0x20b;
constexpr std::size_t kExports = 112;  // in the optional header: address and size
constexpr std::size_t kImports = 120;

class Image {
  public:
    explicit Image(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        headers_ = Number(kPlaceOfHeaders, 4);
        if (Text(headers_) != "PE" || Number(OptionalHeader(), 2) != kMagicOf64Bits)
            throw std::runtime_error("no 64-bit Windows file: " + path);
    }

    /// The little-endian number of so many bytes at a place in the file.
    std::uint32_t Number(std::size_t place, std::size_t size) const {
        if (place + size > bytes_.size()) throw std::runtime_error("the file ends too early");
        std::uint32_t number = 0;
        while (size-- > 0)
            number = (number << 8) | static_cast<unsigned char>(bytes_[place + size]);
        return number;
    }

    /// The text from a place to its terminating zero.
    std::string Text(std::size_t place) const {
        const std::size_t end = bytes_.find('\0', place);
        if (end == std::string::npos) throw std::runtime_error("the file ends too early");
        return bytes_.substr(place, end - place);
    }

    /// The place of a table that the optional header tells of; 0 where there is none.
    std::size_t Table(std::size_t entry) const {
        const std::uint32_t address = Number(OptionalHeader() + entry, 4);
        return address == 0 ? 0 : PlaceOf(address);
    }

    /// Where in the file stands what the loader puts at an address relative to the image.
    std::size_t PlaceOf(std::uint32_t address) const {
        const std::size_t count = Number(headers_ + 6, 2);
        std::size_t section = OptionalHeader() + Number(headers_ + 20, 2);
        for (std::size_t i = 0; i < count; ++i, section += kSizeOfSectionHeader) {
            const std::uint32_t start = Number(section + 12, 4);
            const std::uint32_t size = Number(section + 16, 4);
            if (address >= start && address - start < size)
                return Number(section + 20, 4) + (address - start);
        }
        throw std::runtime_error("an address in no section");
    }

  private:
    std::size_t OptionalHeader() const { return headers_ + kSizeOfFileHeader; }

    std::string bytes_;
    std::size_t headers_ = 0;
};

}  // namespace

PortableExecutable ReadPortableExecutable(const std::string& path) {
    const Image image(path);
    PortableExecutable found;
    if (const std::size_t table = image.Table(kExports); table != 0) {
        const std::size_t count = image.Number(table + 24, 4);
        const std::size_t names = image.PlaceOf(image.Number(table + 32, 4));
        for (std::size_t i = 0; i < count; ++i)
            found.exportedNames.push_back(
                image.Text(image.PlaceOf(image.Number(names + 4 * i, 4))));
    }
    if (std::size_t entry = image.Table(kImports); entry != 0)
        for (; image.Number(entry + 12, 4) != 0; entry += kSizeOfImportEntry)
            found.neededFiles.push_back(image.Text(image.PlaceOf(image.Number(entry + 12, 4))));
    return found;
}
