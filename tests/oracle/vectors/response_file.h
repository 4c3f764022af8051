#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// The response files of NIST's validation programs (FIPS 180-4, FIPS 186): lines "name = value",
/// headings "[name = value]", comments after a number sign.
namespace ResponseFile {

/// What one test says. A field that it does not have throws `std::runtime_error`.
class Case {
  public:
    Case(std::string place, std::map<std::string, std::string> fields);

    /// File and line of its last field.
    const std::string& Place() const { return place_; }
    /// The value as it is written.
    const std::string& Text(const std::string& field) const;
    std::size_t Number(const std::string& field) const;
    /// The bytes of a hexadecimal value.
    std::vector<unsigned char> Bytes(const std::string& field) const;

  private:
    std::string place_;
    std::map<std::string, std::string> fields_;
};

/// The cases of the file at `path`, which belongs to the collection SAMLTOKEN_CRYPTOGRAPHY_VECTORS.
///
/// \param last    The field with which every case ends.
/// \param shared  Fields that hold for all cases behind them until they are given anew; so do
///                headings. Every other field belongs to one case only.
/// \throws std::runtime_error  A line is none of the above, or fields follow the last case.
std::vector<Case> ReadCases(const std::string& path, const std::string& last,
                            const std::vector<std::string>& shared);

/// The bytes that hexadecimal digits stand for; blanks between two digits of different bytes are
/// passed over.
/// \throws std::runtime_error  There is anything else.
std::vector<unsigned char> FromHex(const std::string& digits);

/// The path of a file of the collection; `name` begins at its top.
std::string PathOf(const std::string& name);

}  // namespace ResponseFile
