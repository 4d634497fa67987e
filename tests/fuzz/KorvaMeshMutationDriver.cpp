// Runs the reader's fuzz entry over mutated copies of the given files, for
// builds without libFuzzer. Usage: korvamesh_mutate ITERATIONS FILE...
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "KorvaMeshMutator.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s ITERATIONS FILE...\n", argv[0]);
        return 2;
    }
    long iterations = std::atol(argv[1]);
    std::vector<std::string> seeds;
    for (int i = 2; i < argc; ++i) {
        std::ifstream in(argv[i], std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    KorvaMeshMutator mutator(12345);
    for (long n = 0; n < iterations; ++n) {
        std::string input = mutator.mutate(seeds[static_cast<size_t>(n) % seeds.size()]);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
    }
    std::printf("%ld mutated inputs read without a fault\n", iterations);
    return 0;
}
