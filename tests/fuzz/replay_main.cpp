// Feeds a fuzz target made-up inputs where no fuzzer is at hand: seeds of the kinds that the
// targets know, changed at random, the same in every run. Linked with one *_fuzz.cpp.
#include <algorithm>
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

// One after the other, with a bar between them.
constexpr std::string_view seedText =
    "|/|//a/./b//|.app|/x/.app/y|/A.app/Contents/B.APP/c|/usr/share/x.tar.gz|/home/.hidden/a.b.|"
    "/Library/x|/sBIN|Volumes|/a/../b|...app|a.app/|\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80.txt|"
    "\xED\xA0\x80\xC0\x80\xF4\x90\x80\x80|\x1b[2J\xC2\x9B\x7F\n\t\"\\|0.00 KB|1.50 GB|999.99MB|"
    "-3e38 TB|nan KB|inf GB|18446744073709551615 KB|12 T|2013-04-09 10:20:30 +0000|2013-04-09|--|"
    "a b-c-d|1e999999999 MB|KB|.";

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> out;
    for (std::size_t bar = 0; bar != std::string_view::npos;
         text.remove_prefix(std::min(bar + 1, text.size()))) {
        bar = text.find('|');
        out.push_back(text.substr(0, bar));
    }
    return out;
}

const std::vector<std::string_view> seeds = split(seedText);

constexpr std::string_view marks =
    "/.-: 0123456789eE+KMGTBapPAnif\n\x1b\x80\x9B\xC2\xE2\xF0\xFF\\\""sv;

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
    char mark() {
        return below(4) == 0 ? static_cast<char>(below(256)) : marks[below(marks.size())];
    }

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
