// How fast each loop of the hash runs, beside the function of the ISA-L library for the same
// polynomial. Stops with an error when the two do not agree.
#include <benchmark/benchmark.h>
#include <isa-l/crc64.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "engine/duplicates/crcKernels.h"

namespace {

using Update = std::uint64_t (*)(std::uint64_t value, const void* bytes, std::size_t size);

constexpr std::size_t largest = std::size_t{4} << 20;

const std::vector<unsigned char>& sample() {
    static const std::vector<unsigned char> bytes = [] {
        std::mt19937_64 random(1);
        std::vector<unsigned char> filled(largest);
        for (unsigned char& byte : filled) byte = static_cast<unsigned char>(random());
        return filled;
    }();
    return bytes;
}

/// ISA-L inverts the value that it is given and the one that it gives back.
std::uint64_t isal(std::uint64_t value, const void* bytes, std::size_t size) {
    return ~crc64_jones_refl(~value, static_cast<const unsigned char*>(bytes), size);
}

void run(benchmark::State& state, Update update) {
    const auto size = static_cast<std::size_t>(state.range(0));
    const unsigned char* const bytes = sample().data();
    std::uint64_t value = ~std::uint64_t{0};
    for (auto step : state) {
        // The next buffer does not wait for this one's value: each file starts from all ones.
        value = update(~std::uint64_t{0}, bytes, size);
        benchmark::DoNotOptimize(value);
    }
    const auto total = static_cast<double>(state.iterations()) * static_cast<double>(size);
    state.counters["GB/s"] = benchmark::Counter(total / 1e9, benchmark::Counter::kIsRate);
}

bool agree(const orrinvale::CrcKernel& kernel) {
    for (const std::size_t size :
         {std::size_t{64}, std::size_t{1024}, std::size_t{65'537}, largest})
        for (const std::uint64_t value : {~std::uint64_t{0}, std::uint64_t{12345}})
            if (kernel.update(value, sample().data(), size) != isal(value, sample().data(), size))
                return false;
    return true;
}

void add(const std::string& name, Update update) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [update](benchmark::State& state) { run(state, update); })
        ->Arg(64)
        ->Arg(1 << 10)
        ->Arg(64 << 10)
        ->Arg(static_cast<std::int64_t>(largest));
}

}  // namespace

int main(int argc, char** argv) {
    for (const orrinvale::CrcKernel& kernel : orrinvale::crcKernels()) {
        if (!kernel.supported()) continue;
        if (!agree(kernel)) {
            std::fprintf(stderr, "%s and ISA-L differ\n", std::string(kernel.name).c_str());
            return 1;
        }
        add(std::string(kernel.name), kernel.update);
    }
    add("isa-l", &isal);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
