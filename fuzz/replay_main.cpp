// Replays files and folders through a fuzz target: the seed corpus in CI, or a crash that a search found.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize);

namespace {

void Replay(const std::filesystem::path& rFile) {
    std::ifstream In(rFile, std::ios::binary);
    const std::vector<char> Bytes{std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t nFiles = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::filesystem::is_directory(argv[i])) {
            for (const auto& rEntry : std::filesystem::recursive_directory_iterator(argv[i])) {
                if (rEntry.is_regular_file()) {
                    Replay(rEntry.path());
                    ++nFiles;
                }
            }
        } else {
            Replay(argv[i]);
            ++nFiles;
        }
    }
    std::printf("replayed %zu inputs\n", nFiles);
    return nFiles == 0 ? 1 : 0;
}
