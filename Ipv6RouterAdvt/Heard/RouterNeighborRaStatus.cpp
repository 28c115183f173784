#include <Ipv6RouterAdvt/Heard/RouterNeighborRaStatus.h>
#include <RouterPlatform/Base/Steps.h>
#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Stats/Counter.h>

#include <optional>

namespace RouterAdvt::Table {

/// Runs when the last outside reference to the entity goes. Hands the entity to its control, which decides when it
/// ends: the entity refers to the control and the control to the entity, and this is where one of the two lets go.
class RouterNeighborRaStatusZeroReferencesNotifiee final : public Fwk::Notifiee {
 public:
  explicit RouterNeighborRaStatusZeroReferencesNotifiee(RouterNeighborRaStatus& status) : status_(status) {}

  void handleNotification(Fwk::Notification const&) override {}

  void handleZeroReferences(Fwk::Entity&) override {
    Fwk::Steps steps;  // what an observer throws is dropped: nobody is there to hear of it
    Ptr<SharedTable::CollectionControl> const control = status_.routerNeighborRaControl();
    if (control) steps.run([&] { control->entityIs(Ptr<Fwk::Entity>(&status_)); });
    steps.run([&] { status_.routerNeighborRaControlIs(nullptr); });
    unregister();
  }

 private:
  RouterNeighborRaStatus& status_;
};

RouterNeighborRaStatus::RouterNeighborRaStatus(Name name) : RouterNeighborRaStatus(name, {}) {}

RouterNeighborRaStatus::RouterNeighborRaStatus(Name name, SharedTable::WriterOptions const& options)
    : name_(name),
      table_(routerNeighborRaCollection, options),
      written_(Stats::counter("routerNeighborRaIs")),
      deleted_(Stats::counter("routerNeighborRaDel")),
      notified_(Stats::counter("routerNeighborRaNotify")) {
  zeroReferences_ = Ptr<Fwk::Notifiee>(new RouterNeighborRaStatusZeroReferencesNotifiee(*this));
  zeroReferences_->hasNotificationActiveIs(true);
  notifieeList().add(*zeroReferences_);
  control_ = Fwk::create<SharedTable::CollectionControl>();
  bindTable(control_);
}

/// The table keeps the control it was bound to: that one decides about the entity's end, and it must hear of the
/// unmounting when the entity refers to it no more.
void RouterNeighborRaStatus::bindTable(Ptr<SharedTable::CollectionControl> const& control) {
  table_.callbacksAre({[this](RouterNeighborRaKey const& key) { routerNeighborRaNotify(key); },
                       [this, control] { control->mountStatusIs(table_.mountStatus()); },
                       [control](bool quiesced) { control->quiescedIs(quiesced); }});
  tableControl_ = control;
}

void RouterNeighborRaStatus::routerNeighborRaControlIs(Ptr<SharedTable::CollectionControl> const& control) {
  Ptr<RouterNeighborRaStatus> const alive(this);  // the former control may have been what kept it
  Fwk::Steps steps;
  if (control && control != tableControl_) steps.run([&] { handTableOverTo(control); });
  // Unless an observer has set yet another one.
  if (!control || control == tableControl_) steps.run([&] { attrIs(control_, control, routerNeighborRaControlAttr); });
  steps.finish();
}

/// Each step tells observers, which may set another control: what is left of these steps is that one's then. They may
/// throw as well, which must not leave the former control in the belief that its table is in use.
void RouterNeighborRaStatus::handTableOverTo(Ptr<SharedTable::CollectionControl> const& control) {
  Ptr<SharedTable::CollectionControl> const former = tableControl_;
  bindTable(control);
  Fwk::Steps steps;
  steps.run([&] { control->quiescedIs(table_.mountStatus() != SharedTable::MountStatus::mounted); });
  if (control == tableControl_) steps.run([&] { control->mountStatusIs(table_.mountStatus()); });
  if (control == tableControl_ && former->keptEntity()) control->entityIs(former->keptEntity());
  steps.run([&] { former->mountStatusIs(SharedTable::MountStatus::unmounted); });
  steps.run([&] { former->quiescedIs(true); });
  steps.finish();
}

/// Mounted it can only end when its control was taken away; the control it was bound to is told all the same.
RouterNeighborRaStatus::~RouterNeighborRaStatus() {
  notifieeList().clear();
  control_ = nullptr;
  table_.close();
}

RouterNeighborRa RouterNeighborRaStatus::routerNeighborRa(RouterNeighborRaKey const& key) const {
  return table_.row(key).value_or(RouterNeighborRa());
}

void RouterNeighborRaStatus::routerNeighborRaIs(RouterNeighborRa const& row) {
  RouterNeighborRaKey const key = row.key();
  ++written_;
  lastWriteStatus_ = table_.rowIs(row);
  routerNeighborRaNotify(key);
}

RouterNeighborRa RouterNeighborRaStatus::routerNeighborRaDel(RouterNeighborRaKey const& key) {
  ++deleted_;
  std::optional<RouterNeighborRa> const removed = table_.rowDel(key);
  if (!removed) return RouterNeighborRa();
  routerNeighborRaNotify(removed->key());
  return *removed;
}

void RouterNeighborRaStatus::routerNeighborRaDelAll() {
  Ptr<RouterNeighborRaStatus> const alive(this);
  table_.assertRemovable();
  for (auto const& row : routerNeighborRa()) routerNeighborRaDel(row.key);
}

void RouterNeighborRaStatus::routerNeighborRaCommit(RouterNeighborRa const& row) {
  RouterNeighborRaKey const key = row.key();  // an observer may call for the writable slot
  ++written_;
  lastWriteStatus_ = table_.commit(row);
  routerNeighborRaNotify(key);
}

void RouterNeighborRaStatus::routerNeighborRaNotify(RouterNeighborRaKey const& key) {
  Stats::Counter& notified = notified_;  // an observer may end the entity
  notify(routerNeighborRaAttr, Fwk::NotificationKey::of(key));
  ++notified;
}

void RouterNeighborRaStatus::handleParent(Ptr<Fwk::Entity> parent) {
  // Unmounting lets the control's reference go, which may be the last one.
  Ptr<RouterNeighborRaStatus> const alive(this);
  if (parent)
    (void)table_.mountPathIs(tablePath());  // what goes wrong is counted, traced, and the mount status says it
  else
    (void)table_.mountPathDel();  // without memory the rows stay in the file, which is traced; nothing else is amiss
}

SharedTable::Error RouterNeighborRaStatus::verifyMount() {
  Ptr<RouterNeighborRaStatus> const alive(this);  // as for unmounting
  return table_.verifyMount();
}

RouterNeighborRaStatus::Rows::Iterator::Iterator(RouterNeighborRaStatus const& status) : status_(&status) {
  keys_.reserve(status.table_.count());
  status.table_.forEach([this](RouterNeighborRa const& row) { keys_.push_back(row.key()); });
  ++*this;
}

RouterNeighborRaStatus::Rows::Iterator& RouterNeighborRaStatus::Rows::Iterator::operator++() {
  while (next_ < keys_.size()) {
    RouterNeighborRaKey const& key = keys_[next_++];
    if (std::optional<RouterNeighborRa> const row = status_->table_.row(key)) {
      entry_ = {key, *row};
      return *this;
    }
  }
  next_ = keys_.size() + 1;
  return *this;
}

namespace {

using Fwk::MemberRef;
using Fwk::ReflectionResult;
using Status = RouterNeighborRaStatus;

/// The rows to reflection: by the key's short text. A row is written from its time, in seconds.
struct RowOperations {
  static Status const& status(void const* object) { return Fwk::detail::objectAs<Status>(object); }
  static Status& status(void* object) { return Fwk::detail::objectAs<Status>(object); }

  static MemberRef ref(RouterNeighborRa const& row) { return {row.key().toStrep(), nullptr, Fwk::objectRef(row), {}}; }

  static U64 size(void const* object) { return status(object).routerNeighborRa().size(); }

  static ReflectionResult get(void const* object, std::string_view text,
                              Fwk::FunctionRef<void(MemberRef const&)> visit) {
    return Fwk::detail::withKey<RouterNeighborRaKey>(text, [&](RouterNeighborRaKey const& key) {
      if (!status(object).routerNeighborRa().contains(key)) return Fwk::detail::noSuchMember(text);
      RouterNeighborRa const row = status(object).routerNeighborRa(key);
      visit(ref(row));
      return ReflectionResult{};
    });
  }
  static ReflectionResult set(void* object, std::string_view text, std::string_view valueText) {
    return Fwk::detail::withKey<RouterNeighborRaKey>(text, [&](RouterNeighborRaKey const& key) {
      Seconds lastRaReceived = 0;
      ReflectionResult result = Fwk::detail::parseText(valueText, lastRaReceived);
      if (result) status(object).routerNeighborRaIs(RouterNeighborRa(key, lastRaReceived));
      return result;
    });
  }
  static ReflectionResult del(void* object, std::string_view text) {
    return Fwk::detail::withKey<RouterNeighborRaKey>(text, [&](RouterNeighborRaKey const& key) {
      if (!status(object).routerNeighborRa().contains(key)) return Fwk::detail::noSuchMember(text);
      status(object).routerNeighborRaDel(key);
      return ReflectionResult{};
    });
  }
  static void delAll(void* object) { status(object).routerNeighborRaDelAll(); }
  static void forEach(void const* object, Fwk::FunctionRef<bool(MemberRef const&)> visit) {
    for (auto const& entry : status(object).routerNeighborRa())
      if (!visit(ref(entry.value))) return;
  }

  static constexpr Fwk::CollectionRecord record{
      .keyTypeName = RouterNeighborRaKey::fwkTypeName,
      .memberTypeName = RouterNeighborRa::fwkTypeName,
      .memberKind = Fwk::ValueKind::record,
      .memberType = &RouterNeighborRa::typeRecord,
      .size = &size,
      .get = &get,
      .set = &set,
      .del = &del,
      .delAll = &delAll,
      .forEach = &forEach,
  };
};

constexpr Fwk::AttributeRecord rowsAttribute() {
  Fwk::AttributeRecord record;
  record.name = "routerNeighborRa";
  record.kind = Fwk::AttributeKind::collection;
  record.typeName = RouterNeighborRa::fwkTypeName;
  record.collection = &RowOperations::record;
  return record;
}

}  // namespace

Fwk::TypeRecord const& RouterNeighborRaStatus::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<RouterNeighborRaStatus>(
      rowsAttribute(), reference<&RouterNeighborRaStatus::routerNeighborRaControl>("routerNeighborRaControl"),
      constant<&RouterNeighborRaStatus::tablePath>("tablePath"));
  static constexpr TypeRecord record = entityRecord<RouterNeighborRaStatus, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt::Table
