// A dump can be read back, what is joined splits again, and the rest has a second opinion.
#include <quor/exception.h>
#include <quor/string_utils.h>

#include <sstream>

#include "fuzz.h"

namespace {

// Input: bytes per line, whether with text, the bytes.
void CheckDump(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data + 2, data + size);
    const bool ascii = data[1] % 2 != 0;
    const std::size_t most = ascii ? 18 : 24;
    const std::size_t width = data[0] == 0 ? most : std::min<std::size_t>(data[0], most);
    std::istringstream dump(
        quor::HexDump(bytes.data(), static_cast<unsigned int>(bytes.size()), data[0], ascii));
    std::string read;
    for (std::string line; std::getline(dump, line); Require(!dump.eof())) {
        Require(line.find(": ") == 5 && std::stoul(line) == read.size());
        std::string text = ascii ? " " : "";
        for (std::size_t column = 0; column < width; ++column) {
            const std::string digits = line.substr(7 + 3 * column, 3);
            if (read.size() == bytes.size()) {
                Require(digits == "   ");
                continue;
            }
            Require(digits.find_first_not_of("0123456789ABCDEF") == 2 && digits[2] == ' ');
            const auto byte = static_cast<char>(std::stoi(digits, nullptr, 16));
            read += byte;
            text += ascii ? std::string(1, byte > 0x20 && byte < 0x7F ? byte : '.') : "";
        }
        Require(line.substr(7 + 3 * width) == text);
    }
    Require(read == bytes);
}

std::vector<std::string> Split(const std::string& text, const std::string& delimiters) {
    std::vector<std::string> tokens;
    std::size_t end = 0;
    for (std::size_t begin = 0; (begin = text.find_first_not_of(delimiters, end)) < text.size();) {
        end = std::min(text.find_first_of(delimiters, begin), text.size());
        tokens.push_back(text.substr(begin, end - begin));
    }
    return tokens;
}

void CheckWords(const std::string& text, const std::string& delimiters) {
    const auto tokens = quor::TokenizeString(text.c_str(), delimiters.c_str());
    Require(tokens == Split(text, delimiters));
    const std::string joined = quor::StringVecIntoString(tokens, delimiters.c_str());
    Require(delimiters.empty() || Split(joined, delimiters) == tokens);
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    const std::size_t last = text.find_last_not_of(" \t\n\v\f\r");
    Require(quor::TrimString(text.c_str()) ==
            (first < text.size() ? text.substr(first, last - first + 1) : ""));
    try {
        Require(quor::ToBool(text) ? text == "1" || text == "true"
                                   : text == "0" || text == "false");
    } catch (const quor::Exception&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size >= 2) {
        CheckDump(data, size);
    }
    // Input: delimiters, a NUL, a text.
    const std::uint8_t* end = std::find(data, data + size, 0);
    const std::uint8_t* begin = std::min(end + 1, data + size);
    CheckWords(std::string(begin, std::find(begin, data + size, 0)), std::string(data, end));
    return 0;
}
