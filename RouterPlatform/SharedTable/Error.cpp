#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/SharedTable/Error.h>

namespace SharedTable {

void appendText(std::string& out, Errc code) {
  static constexpr std::string_view texts[] = {"ok",      "bad name",      "no table", "not trusted", "incompatible",
                                               "damaged", "second writer", "no space", "system error"};
  out += texts[static_cast<U8>(code)];
}

void appendText(std::string& out, Corruption const& corruption) {
  static constexpr std::string_view texts[] = {"nothing damaged", "damaged header", "damaged index", "damaged bucket ",
                                               "damaged slot "};
  out += texts[static_cast<U8>(corruption.place)];
  if (corruption.place == Corruption::Place::bucket || corruption.place == Corruption::Place::slot)
    Trace::appendText(out, corruption.number);
  if (corruption) Trace::appendTexts(out, " at offset ", corruption.offset);
}

void appendText(std::string& out, WriteStatus status) {
  static constexpr std::string_view texts[] = {"ok", "table full", "file system full", "corrupt"};
  out += texts[static_cast<U8>(status)];
}

}  // namespace SharedTable
