#include <quor/string_utils.h>

#include <quor/exception.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace quor {
namespace {

constexpr double c_tolerance = 1e-15;
constexpr unsigned int c_mostBytesPerLine = 24;
constexpr unsigned int c_mostBytesPerLineWithText = 18;

bool IsBlank(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

void AppendHexColumn(std::string& dump, const unsigned char* line, unsigned int count,
                     unsigned int width) {
    constexpr const char* digits = "0123456789ABCDEF";
    for (unsigned int index = 0; index < count; ++index) {
        dump += digits[line[index] >> 4];
        dump += digits[line[index] & 0xF];
        dump += ' ';
    }
    dump.append(std::size_t{3} * (width - count), ' ');
}

void AppendTextColumn(std::string& dump, const unsigned char* line, unsigned int count) {
    dump += ' ';
    for (unsigned int index = 0; index < count; ++index) {
        dump += std::isgraph(line[index]) != 0 ? static_cast<char>(line[index]) : '.';
    }
}

}  // namespace

bool Equal(double a, double b) {
    // Infinities would otherwise be too far from themselves and near to everything else.
    if (a == b || std::isinf(a) || std::isinf(b)) {
        return a == b;
    }
    return std::fabs(std::max(a, b)) * c_tolerance >= std::fabs(a - b);
}

// By value, as the binary interface has it.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::string StringVecIntoString(std::vector<std::string> items, const char* separator) {
    std::string joined;
    const char* between = "";
    for (const std::string& item : items) {
        joined += between;
        joined += item;
        between = separator;
    }
    return joined;
}

bool ToBool(const std::string& text) {
    if (text == "1" || text == "true") {
        return true;
    }
    if (text == "0" || text == "false") {
        return false;
    }
    throw Exception("Invalid cast from string to boolean.", true);
}

std::string TrimString(const char* text) {
    if (text == nullptr) {
        return std::string();
    }
    const char* end = text + std::strlen(text);
    const char* begin = std::find_if_not(text, end, IsBlank);
    while (end != begin && IsBlank(end[-1])) {
        --end;
    }
    return std::string(begin, end);
}

std::string HexDump(const void* data, unsigned int size, unsigned int bytesPerLine, bool ascii) {
    const unsigned int most = ascii ? c_mostBytesPerLineWithText : c_mostBytesPerLine;
    const unsigned int width = bytesPerLine == 0 ? most : std::min(bytesPerLine, most);
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::string dump;
    unsigned int count = 0;
    // Never past `size`, which may be the largest number there is.
    for (unsigned int offset = 0; offset < size; offset += count) {
        count = std::min(width, size - offset);
        char head[16];
        std::snprintf(head, sizeof(head), "%05u: ", offset);
        dump += head;
        AppendHexColumn(dump, bytes + offset, count, width);
        if (ascii) {
            AppendTextColumn(dump, bytes + offset, count);
        }
        dump += '\n';
    }
    return dump;
}

std::vector<std::string> TokenizeString(const char* text, const char* delimiters) {
    std::string work(text);
    std::vector<std::string> tokens;
    char* position = nullptr;
    for (const char* token = strtok_r(work.data(), delimiters, &position); token != nullptr;
         token = strtok_r(nullptr, delimiters, &position)) {
        tokens.emplace_back(token);
    }
    return tokens;
}

}  // namespace quor
