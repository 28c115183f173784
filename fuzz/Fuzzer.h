#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// What a fuzz target is made of. A target is one file <Name>Fuzzer.cpp: it states a property in its first comment,
// defines LLVMFuzzerTestOneInput and checks the property with FUZZ_CHECK. Its seeds, and an input for every bug it
// found, stand in fuzz/corpus/<Name>/ under names that say what they are.

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

/// Defined by a target that wants generated inputs beside its corpus when it is replayed as an ordinary test: their
/// number, as in `std::size_t const fuzzGeneratedInputs = 10'000;`. They are the same in every run: mutated and cut
/// seeds, and random octets.
extern "C" std::size_t const fuzzGeneratedInputs;

/// Ends the program unless `condition` holds, whatever the kind of build.
#define FUZZ_CHECK(condition)                                                                      \
  do {                                                                                             \
    if (!(condition)) {                                                                            \
      std::fprintf(stderr, "%s:%d: property does not hold: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                                \
    }                                                                                              \
  } while (false)
