#include <programs/common/config/Advert.h>
#include <programs/common/config/Warnings.h>
#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/frames/FrameDescriber.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/AdvertArguments.h>
#include <programs/routeradvt/commands/Commands.h>

#include <CLI/CLI.hpp>

#include <ostream>

namespace Tool {

namespace {

class BuildCommand final : public Command {
 public:
  CLI::App& addTo(CLI::App& program) override {
    CLI::App& app = *program.add_subcommand("build", "build one advertisement, and print it or write it to a file");
    addAdvertOptions(app, options_);
    app.footer(
        "Without --hex and --write the frame is printed field by field, with the offset of each. Warnings,\n"
        "on standard error, are about what is not sent as it is written, or is not heeded by receivers.\n\n"
        "  routeradvt build office.yaml Ethernet1\n"
        "  routeradvt build office.yaml Ethernet1 --write ra.pcap\n"
        "  routeradvt build office.yaml Ethernet1 --write - | tcpdump -vr -\n"
        "  routeradvt build office.yaml Ethernet1 --death --hex");
    return app;
  }

  void run(Console& console) override {
    if (options_.hex && options_.write == "-") throw UsageError("--hex and --write - both mean standard output");
    ConfigFile const file = loadConfigFileOrFail(options_.file);
    Advert const advert = makeAdvert(file, options_);
    printAdvertWarnings(console.err, file, advert);
    traceLevelsAre(options_.trace);
    auto const packet = advert.build();
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
