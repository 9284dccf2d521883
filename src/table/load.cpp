// load_table
#include <cctype>
#include <cstdio>

#include "frame/convert.h"
#include "zerklsc.h"

namespace {

bool is_digit(int c) {
    return c >= '0' && c <= '9';
}

int first_after_space(std::FILE* file) {
    int c = std::getc(file);
    while (c != EOF && std::isspace(c) != 0)
        c = std::getc(file);
    return c;
}

// Reads one value as fscanf does with "%hd", but with a result for every number: its low 16 bits. On anything
// else the value stays and the offending character remains in the file, so that the next read meets it again.
void read_value(std::FILE* file, uint16_t* value) {
    int c = first_after_space(file);
    const bool negative = c == '-';
    if (negative || c == '+')
        c = std::getc(file);
    if (!is_digit(c)) {
        std::ungetc(c, file);
        return;
    }
    uint16_t magnitude = 0;
    for (; is_digit(c); c = std::getc(file))
        magnitude = zerklsc::low16(magnitude * 10 + (c - '0'));
    std::ungetc(c, file);
    *value = zerklsc::low16(negative ? -magnitude : magnitude);
}

} // namespace

int load_table(const char* path, unsigned short* table, int n) {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr)
        return 0;
    uint16_t value = 0;
    for (int i = 0; i < n; ++i) {
        read_value(file, &value);
        // A failed read repeats the last value.
        table[i] = value;
    }
    std::fclose(file);
    return 0;
}
