#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

// Runs a target over files that are there already: a corpus, or what a fuzzer wrote when it found
// something. Any compiler builds it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void AddFiles(const fs::path& path, std::vector<fs::path>& files) {
    if (!fs::is_directory(path)) {
        files.push_back(path);
        return;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file()) files.push_back(entry.path());
}

std::vector<std::uint8_t> BytesOf(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    if (!input) throw std::runtime_error("cannot be read: " + file.string());
    return {std::istreambuf_iterator<char>(input), {}};
}

/// \return How many files there were.
std::size_t Replay(const std::vector<std::string>& paths) {
    std::vector<fs::path> files;
    for (const std::string& path : paths)
        AddFiles(path, files);
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        std::cout << file.filename().string() << std::endl;  // what ends the process stands last
        const std::vector<std::uint8_t> bytes = BytesOf(file);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::cout << files.size() << " inputs replayed\n";
    return files.size();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER-OR-FILE...\n";
        return 2;
    }
    try {
        return Replay({argv + 1, argv + argc}) != 0 ? 0 : 1;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
}
