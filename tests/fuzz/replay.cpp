// replay FOLDER: hands every file of the folder to the fuzzer's function, once.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int, char* argv[]) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::cout << entry.path().filename() << std::endl;
        std::ifstream file(entry.path(), std::ios::binary);
        // Of exactly the file's size, so that a sanitizer sees what is read behind it.
        const std::vector<char> input{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
        ++files;
    }
    return files > 0 ? 0 : 1;
}
