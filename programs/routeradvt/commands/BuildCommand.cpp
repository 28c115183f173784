#include <programs/common/config/Advert.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/frames/FrameDescriber.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/AdvertArguments.h>
#include <programs/routeradvt/commands/Commands.h>

#include <ostream>

namespace Tool {

namespace {

class BuildCommand final : public Command {
 public:
  CommandText text() const override {
    return {
        "build", "build one advertisement, and print it or write it to a file",
        "Without --hex and --write the frame is printed field by field, with the offset of each field. Warnings go to "
        "standard error: they name values that are not sent as the file has them, or that receivers ignore.\n\n"
        "  routeradvt build office.yaml Ethernet1\n"
        "  routeradvt build office.yaml Ethernet1 --write ra.pcap\n"
        "  routeradvt build office.yaml Ethernet1 --write - | tcpdump -vr -\n"
        "  routeradvt build office.yaml Ethernet1 --death --hex"};
  }

  void addTo(Options& options) override { addAdvertOptions(options, options_); }

  void run(Console& console) override {
    if (options_.hex && options_.write == "-") throw UsageError("--hex and --write - both mean standard output");
    ConfigFile const file = loadConfigFileOrFail(options_.file);
    RouterAdvt::AdvertRequest const request = makeAdvertRequest(file, options_);
    traceLevelsAre(options_.trace);
    RouterAdvt::LeftOut leftOut;
    auto const packet = RouterAdvt::build(request, &leftOut);
    printAdvertWarnings(console.err, file, request, leftOut);
    if (!options_.write.empty()) CaptureWriter(options_.write).add(packet->octets());
    if (options_.hex)
      console.out << toHex(packet->octets()) << '\n';
    else if (options_.write.empty())
      console.out << toText(describeEthernetFrame(packet->octets()));
  }

 private:
  AdvertOptions options_;
};

}  // namespace

std::unique_ptr<Command> makeBuildCommand() { return std::make_unique<BuildCommand>(); }

}  // namespace Tool
