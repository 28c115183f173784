#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvt/ProcFileDirDataSet.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// Status of one interface, published by the agent: two sets of captured files, independent of one another.
/// Key: `intfId`. Parent: `Status`. Used by one thread at a time.
class ROUTER_ADVT_EXPORT IntfStatus final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    intfIdAttr = Fwk::firstOwnAttr,
    cfgProcFileDataAttr,
    nbrProcFileDataAttr,
  };

  explicit IntfStatus(IntfId intfId) : intfId_(intfId) {}
  static Ptr<IntfStatus> IntfStatusIs(IntfId intfId) { return Fwk::create<IntfStatus>(intfId); }

  /// Interface that the status is of.
  IntfId intfId() const { return intfId_; }
  IntfId const& key() const noexcept { return intfId_; }

  /// The files of the interface's configuration, or null.
  Ptr<ProcFileDirDataSet> cfgProcFileData() const { return cfgProcFileData_.child(); }
  /// The set of that name: the present one as it is, nobody notified; else a new, empty one. The present one then loses
  /// its parent, the new one takes its place, and the attribute is notified once.
  Ptr<ProcFileDirDataSet> cfgProcFileDataIs(Name const& name) { return cfgProcFileData_.childIs(name); }
  /// Removes the set, notifies and returns it; null, and nobody notified, when there is none.
  Ptr<ProcFileDirDataSet> cfgProcFileDataDel() { return cfgProcFileData_.childDel(); }

  /// The files of the interface's neighbours, or null; the operations are those of `cfgProcFileData`.
  Ptr<ProcFileDirDataSet> nbrProcFileData() const { return nbrProcFileData_.child(); }
  Ptr<ProcFileDirDataSet> nbrProcFileDataIs(Name const& name) { return nbrProcFileData_.childIs(name); }
  Ptr<ProcFileDirDataSet> nbrProcFileDataDel() { return nbrProcFileData_.childDel(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::IntfStatus";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~IntfStatus() override = default;

  IntfId intfId_;
  Fwk::OwnedChild<ProcFileDirDataSet> cfgProcFileData_{*this, cfgProcFileDataAttr};
  Fwk::OwnedChild<ProcFileDirDataSet> nbrProcFileData_{*this, nbrProcFileDataAttr};
};

}  // namespace RouterAdvt
