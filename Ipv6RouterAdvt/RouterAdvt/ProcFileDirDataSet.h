#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Collections.h>

namespace RouterAdvt {

/// A set of text files that the agent has captured. Key: `name`. Parent: `IntfStatus`. Used by one thread at a time.
class ROUTER_ADVT_EXPORT ProcFileDirDataSet final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    fileDataAttr = Fwk::firstOwnAttr,
  };

  explicit ProcFileDirDataSet(Name name) : name_(name) {}
  static Ptr<ProcFileDirDataSet> ProcFileDirDataSetIs(Name name) { return Fwk::create<ProcFileDirDataSet>(name); }

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// Contents by file name, in the order in which the files were added.
  auto const& fileData() const { return fileData_; }
  /// Contents of that file; empty when it is not there.
  String fileData(String const& fileName) const { return fileData_.member(fileName); }
  /// Stores the contents, any octets, and notifies with the file name; equal contents change nothing and notify nobody.
  void fileDataIs(String const& fileName, String const& contents) { fileData_.memberIs(fileName, contents); }
  /// Removes the file, notifies with its name and returns its contents; empty, and nobody notified, when it is not
  /// there.
  String fileDataDel(String const& fileName) { return fileData_.memberDel(fileName); }
  /// `fileDataDel` for every file.
  void fileDataDelAll() { fileData_.memberDelAll(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::ProcFileDirDataSet";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~ProcFileDirDataSet() override = default;

  Name name_;
  Fwk::ValueCollection<String, String> fileData_{*this, fileDataAttr};
};

}  // namespace RouterAdvt
