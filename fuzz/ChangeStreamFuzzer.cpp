// Whatever octets arrive as a change stream, they end in an error or in a sound mirror: what a snapshot of it says
// makes an equal one, every member knows what holds it, and a stream that is attached afterwards makes it equal to its
// original.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <fuzz/Fuzzer.h>
#include <tests/Ipv6RouterAdvt/Support/TreeMutator.h>
#include <tests/RouterPlatform/Mirror/TreeText.h>

#include <algorithm>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace Fwk::ChangeStream;
using Fwk::OctetBuffer;
using Fwk::Ptr;
using Trees = std::vector<Ptr<Fwk::Entity>>;

std::string textOf(Trees const& trees) {
  std::string text;
  for (auto const& tree : trees) text += TreeText::of(tree);
  return text;
}

/// Everything there is to say of trees.
OctetBuffer streamOf(Trees const& trees) {
  OctetBuffer octets;
  Writer(Source(trees)).drain(octets);
  return octets;
}

/// Trees with something of everything, the same in every run.
Trees originals() {
  Trees const trees = TreeMutator::modelTrees();
  std::mt19937 random(1);
  TreeMutator mutator(trees, [&](unsigned limit) { return static_cast<unsigned>(random() % limit); });
  for (int i = 0; i < 300; ++i) mutator.step();
  return trees;
}

/// The start of any stream of the model's trees: an input need not find it again, it is long.
OctetBuffer const& hello() {
  static OctetBuffer const octets = [] {
    OctetBuffer whole = streamOf(TreeMutator::modelTrees());
    Fwk::OctetSource in(whole);
    Fwk::U8 kind = 0;
    Fwk::OctetSource body;
    FUZZ_CHECK(in.octet(kind) && in.block(body));
    whole.resize(whole.size() - in.rest().size());
    return whole;
  }();
  return octets;
}

void feedInPieces(Reader& reader, std::span<std::uint8_t const> octets, std::size_t pieceSize) {
  while (!octets.empty() && reader.feed(octets.first(std::min(pieceSize, octets.size()))))
    octets = octets.subspan(std::min(pieceSize, octets.size()));
}

void checkSound(Trees const& mirror) {
  std::string const text = textOf(mirror);
  FUZZ_CHECK(text.find("PARENT IS ANOTHER") == std::string::npos);
  Reader reader(TreeMutator::modelTrees());
  FUZZ_CHECK(reader.feed(streamOf(mirror)));
  FUZZ_CHECK(reader.synchronized());
  FUZZ_CHECK(textOf(reader.roots()) == text);
}

void checkAttaches(Reader& reader) {
  static Trees const trees = originals();
  static OctetBuffer const stream = streamOf(trees);
  static std::string const text = textOf(trees);
  reader.attach();
  FUZZ_CHECK(reader.feed(stream));
  FUZZ_CHECK(reader.synchronized());
  FUZZ_CHECK(textOf(reader.roots()) == text);
}

}  // namespace

extern "C" std::size_t const fuzzGeneratedInputs = 5'000;

/// The first octet says how the others arrive: bit 0, with their own start; bits 1 to 7, the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  std::span<std::uint8_t const> const octets(data + 1, size - 1);
  std::size_t const pieceSize = data[0] < 2 ? size : data[0] / 2U;

  Reader reader(TreeMutator::modelTrees());
  if ((data[0] & 1) == 0) FUZZ_CHECK(reader.feed(hello()));
  feedInPieces(reader, octets, pieceSize);
  checkSound(reader.roots());
  checkAttaches(reader);
  return 0;
}
