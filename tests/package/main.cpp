// Uses a little of each library as a program that was not built with them.

#include <RouterPlatform/Fwk/Hash.h>
#include <RouterPlatform/Fwk/Ptr.h>

#include <cstdlib>

namespace {

class Counted : public Fwk::PtrInterface<Counted> {
 public:
  explicit Counted(bool& ended) : ended_(ended) {}
  void onZeroReferences() noexcept {
    if (!releaseLastReference()) return;
    ended_ = true;
    delete this;
  }

 private:
  bool& ended_;
};

}  // namespace

int main() {
  Fwk::threadSafePtrModeIs(true);
  bool ended = false;
  { Fwk::Ptr<Counted> const object(new Counted(ended)); }
  return ended && Fwk::hashBytes("ra", 2, 0) != Fwk::hashBytes("ra", 2, 1) ? EXIT_SUCCESS : EXIT_FAILURE;
}
