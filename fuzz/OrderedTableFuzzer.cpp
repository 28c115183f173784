// Whatever is added, removed, copied and moved, and however many walks are in progress meanwhile, a table holds what a
// plain vector holds, finds it, and shows it in the same order; a walk sees what was there when it began and still is.

#include <fuzz/Fuzzer.h>
#include <tests/RouterPlatform/Base/OrderedTableModel.h>

namespace {

/// The operation that an octet stands for: bits 0 to 3, of which the rare ones that empty the table also ask for bits 4
/// and 5. Bits 6 and 7 belong to the key.
template <class Pair>
typename Pair::Operation operationOf(std::uint8_t octet) {
  using Operation = typename Pair::Operation;
  constexpr Operation operations[16] = {Pair::add,       Pair::add,      Pair::add,      Pair::add,
                                        Pair::remove,    Pair::remove,   Pair::remove,   Pair::find,
                                        Pair::beginWalk, Pair::stepWalk, Pair::stepWalk, Pair::endWalk,
                                        Pair::copyWalk,  Pair::copy,     Pair::move,     Pair::clear};
  Operation const operation = operations[octet % 16];
  if (operation != Pair::clear) return operation;
  return (octet & 0x30) == 0x30 ? Pair::clear : (octet & 0x30) == 0x20 ? Pair::renew : Pair::add;
}

/// Two octets an operation: what, and with which key or walk.
template <class Items>
void run(std::uint8_t const* data, std::size_t size) {
  using Pair = OrderedTableModel::Pair<Items>;
  Pair pair;
  for (; size >= 2; data += 2, size -= 2) {
    pair.perform(operationOf<Pair>(data[0]), data[1] + (data[0] & 0xc0) * 4U);
    if (pair.size() <= 16) pair.compare();
  }
  pair.compare();
}

}  // namespace

extern "C" std::size_t const fuzzGeneratedInputs = 3'000;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  try {
    run<OrderedTableModel::InlineItems>(data, size);
    run<OrderedTableModel::MuchInlineItems>(data, size);
    run<OrderedTableModel::CountedItems>(data, size);
  } catch (OrderedTableModel::Difference const& difference) {
    std::fprintf(stderr, "table and model differ: %s\n", difference.what());
    bool const tableAndModelAgree = false;
    FUZZ_CHECK(tableAndModelAgree);
  }
  return 0;
}
