// Whatever octets a server sends, `mirror` makes sound output of them: the trees and each change, as JSON, are valid
// JSON, and no control octet of the stream reaches the text. After each change the watch has nothing more to tell.

#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <fuzz/ProgramOutput.h>
#include <programs/common/trees/TreeReport.h>
#include <programs/common/trees/TreeWatch.h>
#include <tests/Ipv6RouterAdvt/Support/TreeMutator.h>

#include <span>

namespace {

using namespace Fwk::ChangeStream;
using Fwk::OctetBuffer;

/// The start of any stream of the model's trees: an input need not find it again, it is long.
OctetBuffer const& hello() {
  static OctetBuffer const octets = [] {
    OctetBuffer whole;
    Writer(Source(TreeMutator::modelTrees())).drain(whole);
    Fwk::OctetSource in(whole);
    Fwk::U8 kind = 0;
    Fwk::OctetSource body;
    FUZZ_CHECK(in.octet(kind) && in.block(body));
    whole.resize(whole.size() - in.rest().size());
    return whole;
  }();
  return octets;
}

/// What `mirror --follow` shows, once and with every change.
class Follower {
 public:
  /// False: the stream cannot be read on.
  bool feed(std::span<std::uint8_t const> octets) {
    if (!reader_.feed(octets)) return false;
    if (reader_.synchronized()) report();
    return true;
  }

 private:
  void report() {
    if (reader_.roots() != shown_) {
      shown_ = reader_.roots();
      watch_.rootsAre(shown_);
    } else {
      for (Tool::TreeChange const& change : watch_.take()) {
        ToolOutput::checkPrintable(Tool::changeText(change));
        ToolOutput::checkJson(Tool::jsonText(Tool::changeJson(change)));
      }
    }
    FUZZ_CHECK(watch_.take().empty());
    ToolOutput::checkPrintable(Tool::treesText(shown_));
    ToolOutput::checkJson(Tool::jsonText(Tool::treesJson(shown_)));
  }

  Reader reader_{&registeredRoot};
  std::vector<Fwk::Ptr<Fwk::Entity>> shown_;
  Tool::TreeWatch watch_;
};

}  // namespace

std::size_t const fuzzGeneratedInputs = 2'000;

/// The first octet says how the others arrive: bit 0, with their own start; bits 1 to 7, the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  std::span<std::uint8_t const> octets(data + 1, size - 1);
  std::size_t const pieceSize = data[0] < 2 ? size : data[0] / 2U;

  Follower follower;
  if ((data[0] & 1) == 0) FUZZ_CHECK(follower.feed(hello()));
  while (!octets.empty() && follower.feed(octets.first(std::min(pieceSize, octets.size()))))
    octets = octets.subspan(std::min(pieceSize, octets.size()));
  return 0;
}
