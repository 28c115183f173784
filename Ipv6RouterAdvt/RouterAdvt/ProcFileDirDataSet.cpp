#include <Ipv6RouterAdvt/RouterAdvt/ProcFileDirDataSet.h>
#include <RouterPlatform/Fwk/Attributes.h>

namespace RouterAdvt {

Fwk::TypeRecord const& ProcFileDirDataSet::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs =
      attributes<ProcFileDirDataSet>(collection<&ProcFileDirDataSet::fileData_>("fileData", MemberOrder::arbitrary));
  static constexpr TypeRecord record = entityRecord<ProcFileDirDataSet, Name>(attrs, live);
  return record;
}

}  // namespace RouterAdvt
