#include <Ipv6RouterAdvt/Heard/RaPacketStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRaStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>

#include <array>
#include <string_view>

namespace RouterAdvt {

namespace {

/// Types in the order in which they are registered.
template <class... Types>
struct TypeList {
  static constexpr std::size_t namesSize = ((std::string_view(Types::fwkTypeName).size() + 1) + ...);

  /// The names, the last one first, each closed by a NUL.
  static constexpr std::array<char, namesSize> reversedNames() {
    std::array<char, namesSize> names{};
    std::size_t end = namesSize;
    for (std::string_view const name : {std::string_view(Types::fwkTypeName)...}) {
      end -= name.size() + 1;
      for (std::size_t i = 0; i < name.size(); ++i) names[end + i] = name[i];
    }
    return names;
  }

  static void registerAll() { (Fwk::typeRegistry().add(Types::typeRecord()), ...); }
};

/// The model's types. The order is part of the binary interface.
using ModelTypes =
    TypeList<Status, RaPacketStatus, RouterNeighbor, PrefixDefault, RouterNeighborStatus, RouterNeighborRaKey,
             RouterNeighborRa, PrefixProfileEntry, PrefixConfigEntry, RaPacket, IntfConfig,
             Table::RouterNeighborRaStatus, LifeTimeHashMap, DNSServerConfigEntry, DNSSuffixConfigEntry,
             RaPacketPrefixInfo, ProcFileDirDataSet, Config, IntfStatus, RouterNeighbors>;

/// Text that a tool reads from the library file without loading it. One array, kept by compiler and linker as it is.
[[gnu::used, gnu::retain, gnu::section(FWK_TYPE_NAMES_SECTION)]] constexpr auto typeNames = ModelTypes::reversedNames();

/// Enters the types into the registry when the library is loaded.
struct Registration {
  Registration() { ModelTypes::registerAll(); }
};

Registration const registration;

}  // namespace

/// The linker flags of the static library name this function, so that this object leaves the archive.
extern "C" [[gnu::visibility("hidden")]] void RouterAdvt_registration() {}

}  // namespace RouterAdvt
