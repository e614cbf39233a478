// Feeds a fuzz target made-up inputs where no fuzzer is at hand: seeds of the kinds that the targets know, changed at random, the
// same in every run. Linked with one *_fuzz.cpp.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

using namespace std::string_view_literals;

constexpr std::array seeds{""sv,
                           "/"sv,
                           "//a/./b//"sv,
                           ".app"sv,
                           "/x/.app/y"sv,
                           "/A.app/Contents/B.APP/c"sv,
                           "/usr/share/x.tar.gz"sv,
                           "/home/.hidden/a.b."sv,
                           "/Library/x"sv,
                           "/sBIN"sv,
                           "Volumes"sv,
                           "/a/../b"sv,
                           "...app"sv,
                           "a.app/"sv,
                           "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80.txt"sv,
                           "\xED\xA0\x80\xC0\x80\xF4\x90\x80\x80"sv,
                           "\x1b[2J\xC2\x9B\x7F\n\t\"\\"sv,
                           "0.00 KB"sv,
                           "1.50 GB"sv,
                           "999.99MB"sv,
                           "-3e38 TB"sv,
                           "nan KB"sv,
                           "inf GB"sv,
                           "18446744073709551615 KB"sv,
                           "12 T"sv,
                           "2013-04-09 10:20:30 +0000"sv,
                           "2013-04-09"sv,
                           "--"sv,
                           "a b-c-d"sv,
                           "1e999999999 MB"sv,
                           "KB"sv,
                           "."sv};

constexpr std::string_view marks = "/.-: 0123456789eE+KMGTBapPAnif\n\x1b\x80\x9B\xC2\xE2\xF0\xFF\\\""sv;

class Maker final {
public:
    std::string next() {
        std::string text(seeds[below(seeds.size())]);
        if (below(8) == 0) text = noise(below(64));
        for (std::size_t changes = below(6); changes > 0; --changes) change(text);
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    char mark() { return below(4) == 0 ? static_cast<char>(below(256)) : marks[below(marks.size())]; }

    std::string noise(std::size_t size) {
        std::string out;
        while (out.size() < size) out += mark();
        return out;
    }

    void change(std::string& text) {
        const std::size_t at = below(text.size() + 1);
        switch (below(5)) {
            case 0: text.insert(at, 1, mark()); break;
            case 1: text.insert(at, seeds[below(seeds.size())]); break;
            case 2: text.erase(at, below(4)); break;
            case 3: text.resize(at); break;
            default:
                if (at < text.size()) text[at] = mark();
        }
    }

    std::mt19937_64 m_random{20261121};
};

void feed(const std::string& text) {
    // An allocation of exactly this size, so that a memory checker sees a read behind the end.
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    (void)LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main() {
    constexpr int inputs = 50'000;
    Maker maker;
    for (const std::string_view seed : seeds) feed(std::string(seed));
    for (int i = 0; i < inputs; ++i) feed(maker.next());
    std::printf("%d inputs\n", inputs);
}
