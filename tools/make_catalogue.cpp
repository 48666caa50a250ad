// make_catalogue FILE ROWS: a new catalogue with all its tables and ROWS made-up events (0: empty).

#include "bench_catalogue.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string_view>

int main(int argc, char** argv) {
    std::int64_t rows = -1;
    if (argc == 3) {
        const std::string_view text = argv[2];
        const auto parsed = std::from_chars(text.data(), text.data() + text.size(), rows);
        if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
            rows = -1;
    }
    if (rows < 0) {
        std::fputs("usage: make_catalogue FILE ROWS\n", stderr);
        return 2;
    }
    try {
        tremor::makeCatalogue(argv[1], rows);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_catalogue: %s: %s\n", argv[1], error.what());
        return 1;
    }
    return 0;
}
