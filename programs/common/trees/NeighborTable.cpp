#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <programs/common/trees/NeighborTable.h>

#include <chrono>

namespace Tool {

namespace {

using RouterAdvt::Name;
using RouterAdvt::Table::RouterNeighborRaStatus;

/// The root of the program's entities. The table is mounted while this holds it.
class Agent final : public Fwk::Entity {
 public:
  enum Attr : Fwk::AttrId { neighborsAttr = Fwk::firstOwnAttr };

  explicit Agent(Name name) : name_(name) {}

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  Fwk::Ptr<RouterNeighborRaStatus> neighborsIs(Name const& name) { return neighbors_.childIs(name); }

  static constexpr char const* fwkTypeName = "Tool::Agent";
  static Fwk::TypeRecord const& typeRecord() {
    using namespace Fwk;
    static constinit LiveCount live;
    static constexpr auto attrs = attributes<Agent>(child<&Agent::neighbors_>("neighbors"));
    static constexpr TypeRecord record = entityRecord<Agent, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Agent() override = default;

  Name name_;
  Fwk::OwnedChild<RouterNeighborRaStatus> neighbors_{*this, neighborsAttr};
};

}  // namespace

NeighborTable::NeighborTable() {
  auto const agent = Fwk::create<Agent>("routeradvt");
  root_ = agent;
  rows_ = agent->neighborsIs("neighbors");
}

/// Not a table that could not be mounted in the first place: another program may keep that one.
void NeighborTable::mountAnewIfLost() {
  bool const lost =
      rows_->verifyMount() && rows_->routerNeighborRaControl()->mountStatus() == SharedTable::MountStatus::failed;
  if (!lost) return;
  rows_->handleParent(nullptr);
  rows_->handleParent(root_);
}

std::string NeighborTable::problem() const { return rows_->mountError().text; }

void NeighborTable::hear(Net::IntfId const& intfId, Net::Ip6Addr const& router) {
  mountAnewIfLost();
  std::chrono::duration<Fwk::Seconds> const now = std::chrono::system_clock::now().time_since_epoch();
  rows_->routerNeighborRaIs(RouterAdvt::RouterNeighborRa(RouterAdvt::RouterNeighborRaKey(intfId, router), now.count()));
}

}  // namespace Tool
