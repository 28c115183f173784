#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/TreeAssign.h>

#include <limits>
#include <stdexcept>

namespace Fwk {

void assignTree(Ptr<Entity> const& from, Ptr<Entity> const& to) {
  // A snapshot that meets an existing mirror sets only differences. Here both are in one process. docs/adr/0009
  constexpr std::size_t chunkSize = 65536;
  if (&from->fwkType() != &to->fwkType()) throw std::invalid_argument("trees of two types");
  ChangeStream::Writer writer(from);
  ChangeStream::Reader reader(to, {.maxMembers = std::numeric_limits<std::size_t>::max()});
  OctetBuffer chunk;
  while (writer.pending()) {
    chunk.clear();
    writer.drain(chunk, chunkSize);
    if (!reader.feed(chunk)) throw std::runtime_error(reader.error().text);
  }
}

}  // namespace Fwk
